@echo off
rem Registra AZCOLLSRV.dll a 64 e a 32 bit. Con /utente: solo per l'utente corrente, senza amministratore.
setlocal
set OPZIONI=/s
if /i "%~1"=="/utente" set OPZIONI=/s /n /i:user
set ESITO=0
if exist "%SystemRoot%\SysWOW64\regsvr32.exe" (
  "%SystemRoot%\System32\regsvr32.exe" %OPZIONI% "%~dp0x64\AZCOLLSRV.dll" || set ESITO=1
  "%SystemRoot%\SysWOW64\regsvr32.exe" %OPZIONI% "%~dp0x86\AZCOLLSRV.dll" || set ESITO=1
) else (
  "%SystemRoot%\System32\regsvr32.exe" %OPZIONI% "%~dp0x86\AZCOLLSRV.dll" || set ESITO=1
)
if %ESITO%==0 (echo AZCOLLSRV registrata.) else (echo Registrazione non riuscita: servono i diritti di amministratore, oppure /utente.)
exit /b %ESITO%
