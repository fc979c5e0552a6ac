-- The role azcoll_servizio: the rights that the service's own statements need, and no others. For a
-- server only; to be run after procedure.sql by somebody who may grant rights (db_owner). The user
-- that the service connects as is then put into it: ALTER ROLE azcoll_servizio ADD MEMBER [user].
--
-- The GRANT lines are checked by a test against the statements that the methods really send; when
-- they differ, it prints the file as it should be.
--
-- Not here, because it needs no right of the user's: what PC_GetDitteCollegate and FNCG28_TABCODIVA
-- read inside (their owner is the tables' owner), the referenced tables of foreign keys, table
-- variables, and the catalogue, which shows to everybody the objects he has a right on.
IF NOT EXISTS (SELECT 1 FROM sys.database_principals WHERE name = N'azcoll_servizio' AND type = 'R')
    CREATE ROLE azcoll_servizio
GO

GRANT SELECT ON dbo.CG16_ANAGGEN TO azcoll_servizio
GRANT SELECT ON dbo.CG6A_TABATECO2007 TO azcoll_servizio
GRANT SELECT ON dbo.CG35_PRSDATIPROC TO azcoll_servizio
GRANT SELECT, UPDATE ON dbo.CG18_ANADITTABASE TO azcoll_servizio
GRANT SELECT, UPDATE ON dbo.CG25_ANADITTAGEST TO azcoll_servizio
GRANT SELECT, UPDATE ON dbo.CG30_ANADITTADATE TO azcoll_servizio
GRANT SELECT ON dbo.CG19_ANADITTAESER TO azcoll_servizio
GRANT SELECT ON dbo.CG38_PARCOGE TO azcoll_servizio
GRANT SELECT, INSERT, UPDATE ON dbo.CG70_NUMERDOC TO azcoll_servizio
GRANT SELECT, INSERT ON dbo.CG40_ANADITTAINTER TO azcoll_servizio
GRANT SELECT, INSERT ON dbo.CG31_ANADITTASEDI TO azcoll_servizio
GRANT SELECT ON dbo.MG17_AGENTI TO azcoll_servizio
GRANT SELECT, INSERT, UPDATE, DELETE ON dbo.CG86_AZIENDECOLL TO azcoll_servizio
GRANT SELECT, INSERT, UPDATE ON dbo.CG96_ANAGATTIVITA TO azcoll_servizio
GRANT SELECT ON dbo.CG32_ANADITTAPSEZ TO azcoll_servizio
GRANT SELECT, INSERT, UPDATE, DELETE ON dbo.CG44_CLIFOR TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG19_CLIFORVA TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG1C_CLIFORAGEMUL TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG22_CLIFORDEST TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG24_CLIFORRAG TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG27_CLIFORACC TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG28_CLIFORINT TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG26_CLIFORNOTE TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG41_CLIFORVETT TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG23_CLIFORNCOP TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG35_CLIFORCC TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG29_CLIFORRID TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG20_CLIFORSCPAG TO azcoll_servizio
GRANT SELECT, INSERT, DELETE ON dbo.MG21_CLIFORSALPAG TO azcoll_servizio
GRANT SELECT, DELETE ON dbo.CG4E_CFCOINTESTATI TO azcoll_servizio
GRANT EXECUTE ON dbo.PC_GetDitteCollegate TO azcoll_servizio
GRANT SELECT ON dbo.FNCG28_TABCODIVA TO azcoll_servizio
GO
