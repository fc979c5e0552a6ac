@echo off
rem Registra AZCOLLSRV.dll a 64 e a 32 bit. Con /utente: solo per l'utente corrente, senza amministratore.
setlocal
set OPZIONI=/s
if /i "%~1"=="/utente" set OPZIONI=/s /n /i:user
set ESITO=0
set SISTEMA=%SystemRoot%\System32
if defined PROCESSOR_ARCHITEW6432 set SISTEMA=%SystemRoot%\Sysnative
if "%PROCESSOR_ARCHITECTURE%%PROCESSOR_ARCHITEW6432%"=="x86" goto solo32
"%SISTEMA%\regsvr32.exe" %OPZIONI% "%~dp0x64\AZCOLLSRV.dll"
if errorlevel 1 set ESITO=1
set SISTEMA=%SystemRoot%\SysWOW64
if not exist "%SISTEMA%\regsvr32.exe" goto fine
:solo32
"%SISTEMA%\regsvr32.exe" %OPZIONI% "%~dp0x86\AZCOLLSRV.dll"
if errorlevel 1 set ESITO=1
:fine
if %ESITO%==0 (echo AZCOLLSRV registrata.) else (echo Registrazione non riuscita: servono i diritti di amministratore, oppure /utente.)
exit /b %ESITO%
