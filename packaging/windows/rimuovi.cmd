@echo off
rem Toglie la registrazione fatta da registra.cmd. Con /utente: quella dell'utente corrente.
setlocal
set OPZIONI=/s /u
if /i "%~1"=="/utente" set OPZIONI=/s /u /n /i:user
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
if %ESITO%==0 (echo Registrazione tolta.) else (echo Rimozione non riuscita.)
exit /b %ESITO%
