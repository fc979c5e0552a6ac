DECLARE @CodAzienda as int = 10
      , @Elenco TABLE (A INT NOT NULL, B DECIMAL(9, 2) NULL)
IF (SELECT TOP(1) A FROM T WHERE A = @CodAzienda ORDER BY A DESC) = @CodAzienda
BEGIN
  UPDATE X SET A = Y.B FROM T AS X INNER JOIN U AS Y WITH(NOLOCK) ON Y.A = X.A WHERE X.A = @CodAzienda
  INSERT INTO @Elenco (A) SELECT A FROM T
END
ELSE SET @CodAzienda = @CodAzienda + 1
WHILE @CodAzienda < 3 BEGIN SET @CodAzienda = @CodAzienda + 1 IF 1 = 1 BREAK ELSE CONTINUE END
