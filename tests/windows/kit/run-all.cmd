@echo off
rem Runs every test on this workstation: run-all.cmd --help tells more.
setlocal
set words=x64
if /i "%PROCESSOR_ARCHITECTURE%"=="x86" if not defined PROCESSOR_ARCHITEW6432 set words=x86
if not exist "%~dp0%words%\kit.exe" set words=x86
"%~dp0%words%\kit.exe" %*
set outcome=%errorlevel%
rem Started with a double click, the window stays to be read.
if "%~1"=="" pause
exit /b %outcome%
