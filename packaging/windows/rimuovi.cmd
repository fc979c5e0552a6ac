@echo off
rem Toglie la registrazione fatta da registra.cmd. Con /utente: quella dell'utente corrente.
setlocal
set OPZIONI=/s /u
if /i "%~1"=="/utente" set OPZIONI=/s /u /n /i:user
set ESITO=0
if exist "%SystemRoot%\SysWOW64\regsvr32.exe" (
  "%SystemRoot%\System32\regsvr32.exe" %OPZIONI% "%~dp0x64\AZCOLLSRV.dll" || set ESITO=1
  "%SystemRoot%\SysWOW64\regsvr32.exe" %OPZIONI% "%~dp0x86\AZCOLLSRV.dll" || set ESITO=1
) else (
  "%SystemRoot%\System32\regsvr32.exe" %OPZIONI% "%~dp0x86\AZCOLLSRV.dll" || set ESITO=1
)
if %ESITO%==0 (echo Registrazione tolta.) else (echo Rimozione non riuscita.)
exit /b %ESITO%
