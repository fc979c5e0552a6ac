-- Procedure and function of the company database. To be run after tabelle.sql.
--
-- Only what both worlds run alike: the list of companies is built with a WHILE over MIN, because the
-- order in which a SELECT @list = @list + ... meets the rows is not defined.

-- Companies linked to a company in the VAT year of a date.
--
-- The group comes from the rows of kind 0 whose two companies differ. A main company has its own
-- group; a linked company has that of its main company (the lowest code, when it has several).
-- Rows: the main company first with PRINCIPALE 1, then the linked companies by code with 0.
-- CG86_INDTIPOCONT is that of a company's own link; on the main company's row, that of the calling
-- company's link when it is linked, else that of the first link.
--
-- @EscludiDittaPrincipale, @EscludiDittaCorrente: 1 leaves out the main, the calling company.
-- @CodIntermedio with @TipoCF: only companies that have that intermediary of that kind.
-- @CodSede: only companies that have that branch.
-- @GestioneDuplicazioneCliFor: accepted for the callers that pass it; the rows do not depend on it.
-- @DitteCollegate: the codes of the rows returned, in their order, joined with ", ".
CREATE PROCEDURE PC_GetDitteCollegate
    @CodiceDitta INT,
    @DataInizioElaborazione DATETIME,
    @GestioneDuplicazioneCliFor SMALLINT = 0,
    @EscludiDittaPrincipale SMALLINT = 0,
    @EscludiDittaCorrente SMALLINT = 0,
    @TipoCF INT = NULL,
    @CodIntermedio INT = NULL,
    @CodSede INT = NULL,
    @DitteCollegate VARCHAR(8000) = NULL OUTPUT
AS
BEGIN
    -- Without it the row counts of the inner statements would be the first results of the call.
    SET NOCOUNT ON

    -- @Capo: the main company when its row is returned. @Ditta reaches below every company's code.
    DECLARE @Anno INT, @Principale INT, @Capo INT, @IdLegame INT, @Esclusa INT, @Ditta BIGINT
    SET @Anno = YEAR(@DataInizioElaborazione)
    SET @DitteCollegate = ''
    IF @TipoCF IS NULL
        SET @CodIntermedio = NULL

    -- The main company: the calling one when it has links of its own, else the one above it.
    SELECT @Principale = MIN(CG86_DITTA_CG18)
    FROM CG86_AZIENDECOLL
    WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno
      AND CG86_DITTA_CG18 = @CodiceDitta AND CG86_DITTACOLL_CG18 <> CG86_DITTA_CG18
    IF @Principale IS NULL
        SELECT @Principale = MIN(CG86_DITTA_CG18)
        FROM CG86_AZIENDECOLL
        WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno
          AND CG86_DITTACOLL_CG18 = @CodiceDitta AND CG86_DITTA_CG18 <> CG86_DITTACOLL_CG18

    -- The linked companies are all but the main one and, where asked for, the calling one.
    SET @Capo = @Principale
    SET @Esclusa = @Principale
    IF @EscludiDittaCorrente = 1
        SET @Esclusa = @CodiceDitta
    IF @EscludiDittaPrincipale = 1 OR (@EscludiDittaCorrente = 1 AND @CodiceDitta = @Principale)
        SET @Capo = NULL
    IF @CodIntermedio IS NOT NULL
       AND NOT EXISTS (SELECT 1
                       FROM CG40_ANADITTAINTER
                       WHERE CG40_DITTA_CG18 = @Capo AND CG40_TIPOCF = @TipoCF
                         AND CG40_INTERMEDIO = @CodIntermedio)
        SET @Capo = NULL
    IF @CodSede IS NOT NULL
       AND NOT EXISTS (SELECT 1
                       FROM CG31_ANADITTASEDI
                       WHERE CG31_DITTA_CG18 = @Capo AND CG31_CODICE = @CodSede)
        SET @Capo = NULL

    -- The link that the main company's row speaks of: the calling company's, else the first one. A
    -- pair of companies may have several rows in a year; the first one entered speaks for it.
    IF @Capo IS NOT NULL
        SELECT @IdLegame = MIN(CG86_IDATTIVITA)
        FROM CG86_AZIENDECOLL
        WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno AND CG86_DITTA_CG18 = @Principale
          AND CG86_DITTACOLL_CG18 = @CodiceDitta AND CG86_DITTACOLL_CG18 <> @Principale
    IF @Capo IS NOT NULL AND @IdLegame IS NULL
        SELECT @IdLegame = MIN(CG86_IDATTIVITA)
        FROM CG86_AZIENDECOLL
        WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno AND CG86_DITTA_CG18 = @Principale
          AND CG86_DITTACOLL_CG18 = (SELECT MIN(CG86_DITTACOLL_CG18)
                                     FROM CG86_AZIENDECOLL
                                     WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno
                                       AND CG86_DITTA_CG18 = @Principale
                                       AND CG86_DITTACOLL_CG18 <> @Principale)

    -- The list in the order of the rows: the main company, when it is there, then the others. The
    -- separator that the last element leaves behind is cut off at the end. Without filters, which
    -- are rare, the statement that runs for every company does not name their tables.
    IF @Capo IS NOT NULL
        SET @DitteCollegate = CAST(@Capo AS VARCHAR(11)) + ', '
    SET @Ditta = -2147483649
    WHILE @Ditta IS NOT NULL
    BEGIN
        IF @CodIntermedio IS NULL AND @CodSede IS NULL
            SELECT @Ditta = MIN(CG86_DITTACOLL_CG18)
            FROM CG86_AZIENDECOLL
            WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno AND CG86_DITTA_CG18 = @Principale
              AND CG86_DITTACOLL_CG18 > @Ditta
              AND CG86_DITTACOLL_CG18 <> @Principale AND CG86_DITTACOLL_CG18 <> @Esclusa
        ELSE
            SELECT @Ditta = MIN(CG86_DITTACOLL_CG18)
            FROM CG86_AZIENDECOLL
            WHERE CG86_INDTIPO = 0 AND CG86_ANNOIVA = @Anno AND CG86_DITTA_CG18 = @Principale
              AND CG86_DITTACOLL_CG18 > @Ditta
              AND CG86_DITTACOLL_CG18 <> @Principale AND CG86_DITTACOLL_CG18 <> @Esclusa
              AND (@CodIntermedio IS NULL
                   OR EXISTS (SELECT 1
                              FROM CG40_ANADITTAINTER
                              WHERE CG40_DITTA_CG18 = CG86_DITTACOLL_CG18
                                AND CG40_TIPOCF = @TipoCF AND CG40_INTERMEDIO = @CodIntermedio))
              AND (@CodSede IS NULL
                   OR EXISTS (SELECT 1
                              FROM CG31_ANADITTASEDI
                              WHERE CG31_DITTA_CG18 = CG86_DITTACOLL_CG18
                                AND CG31_CODICE = @CodSede))
        SET @DitteCollegate = @DitteCollegate + ISNULL(CAST(@Ditta AS VARCHAR(11)) + ', ', '')
    END
    IF @DitteCollegate <> ''
        SET @DitteCollegate = SUBSTRING(@DitteCollegate, 1, LEN(@DitteCollegate) - 1)

    SELECT CG86_DITTA_CG18 AS DITTA, CAST(1 AS SMALLINT) AS PRINCIPALE, CG86_INDTIPOCONT
    FROM CG86_AZIENDECOLL
    WHERE CG86_IDATTIVITA = @IdLegame
    UNION ALL
    SELECT L.CG86_DITTACOLL_CG18, CAST(0 AS SMALLINT), L.CG86_INDTIPOCONT
    FROM CG86_AZIENDECOLL AS L
    WHERE L.CG86_INDTIPO = 0 AND L.CG86_ANNOIVA = @Anno AND L.CG86_DITTA_CG18 = @Principale
      AND L.CG86_DITTACOLL_CG18 <> @Principale AND L.CG86_DITTACOLL_CG18 <> @Esclusa
      AND NOT EXISTS (SELECT 1
                      FROM CG86_AZIENDECOLL AS P
                      WHERE P.CG86_INDTIPO = 0 AND P.CG86_ANNOIVA = @Anno
                        AND P.CG86_DITTA_CG18 = @Principale
                        AND P.CG86_DITTACOLL_CG18 = L.CG86_DITTACOLL_CG18
                        AND P.CG86_IDATTIVITA < L.CG86_IDATTIVITA)
      AND (@CodIntermedio IS NULL
           OR EXISTS (SELECT 1
                      FROM CG40_ANADITTAINTER
                      WHERE CG40_DITTA_CG18 = L.CG86_DITTACOLL_CG18 AND CG40_TIPOCF = @TipoCF
                        AND CG40_INTERMEDIO = @CodIntermedio))
      AND (@CodSede IS NULL
           OR EXISTS (SELECT 1
                      FROM CG31_ANADITTASEDI
                      WHERE CG31_DITTA_CG18 = L.CG86_DITTACOLL_CG18 AND CG31_CODICE = @CodSede))
    ORDER BY PRINCIPALE DESC, DITTA
END
GO

-- VAT code row of a company; no row when the company does not know the code.
CREATE FUNCTION DBO.FNCG28_TABCODIVA (@Codice NVARCHAR(4), @Ditta INT)
RETURNS TABLE
AS
RETURN (
    SELECT CG28_DITTA_CG18, CG28_CODICE, CG28_DESCR, CG28_PERCIVA
    FROM CG28_TABCODIVA
    WHERE CG28_DITTA_CG18 = @Ditta AND CG28_CODICE = @Codice
)
GO
