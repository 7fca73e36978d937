; The installer and its remover. Both only ask, unpack, and say in the user's language what became of it: what is to be
; done is decided and done by vordane-tools (install, uninstall), all of it or none.
;
;   makensis -DVERSION=1.2.3 -DCPU=amd64|x86 -DPACKAGE=folder -DICON=file -DOUT=file vordane.nsi
;
; PACKAGE holds x64 and/or x86 (programs as they stand below the version directory), common and data.

Unicode true
!if "${CPU}" == "amd64"
  CPU amd64
!endif
!ifdef QUICK
  SetCompressor zlib
!else
  SetCompressor /SOLID lzma
!endif
SetDateSave off           ; the same package gives the same bytes on every day
RequestExecutionLevel highest
ManifestDPIAware true
ManifestSupportedOS all

!pragma warning disable 9000  ; of the file's name, which tests choose
!pragma warning disable 6012  ; labels of loops that nothing jumps to
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh
!include x64.nsh
!include nsDialogs.nsh

!define PRODUCT "Vordane"
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall"
!define SETTINGS "Software\VB and VBA Program Settings\QUILMAR32"

Name "${PRODUCT} ${VERSION}"
OutFile "${OUT}"
BrandingText "${PRODUCT} ${VERSION}"
InstallButtonText "$(INSTALL_BUTTON)"
UninstallButtonText "$(REMOVE_BUTTON)"
ShowInstDetails show
ShowUninstDetails show
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "${PRODUCT}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "${PRODUCT} Setup"
VIAddVersionKey LegalCopyright ""

Var Everybody      ; 1: for every user
Var TextsIn       ; of the suite's texts: en, ru, ja
Var Words          ; empty: as the system and the suite have it
Var Demonstration  ; 1: with the simulated exchange
Var CrashDumps     ; 1: the system keeps an image of each crash
Var NoShortcuts
Var Wait           ; seconds for what is in use, without a screen
Var Everything     ; of the remover: stored faults too
Var Root           ; of the remover: the version directory
Var Log
Var Code           ; how the work ended
Var Sentence       ; that in words
Var Option
Var RadioAll
Var RadioMe
Var ListLanguage
Var ListWords
Var CheckDemo
Var CheckDumps

!ifdef SIGN
  !uninstfinalize '"${SIGN}" "%1"' = 0
!endif
!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_ABORTWARNING
!define MUI_LANGDLL_ALLLANGUAGES

!define MUI_WELCOMEPAGE_TEXT "$(WELCOME)"
!insertmacro MUI_PAGE_WELCOME
Page custom optionsPage optionsLeave
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE directoryLeave
!define MUI_DIRECTORYPAGE_TEXT_TOP "$(DIRECTORY)"
!insertmacro MUI_PAGE_DIRECTORY
!define MUI_FINISHPAGE_NOAUTOCLOSE
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH

UninstPage custom un.optionsPage un.optionsLeave
!define MUI_UNFINISHPAGE_NOAUTOCLOSE
!insertmacro MUI_UNPAGE_INSTFILES

!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "Russian"
!insertmacro MUI_LANGUAGE "Japanese"
!include "texts/en.nsh"
!include "texts/ru.nsh"
!include "texts/ja.nsh"

; What one exit code of vordane-tools is called.
!macro SENTENCE_CASE CODE
  ${Case} "${CODE}"
    StrCpy $Sentence "$(OUTCOME_${CODE})"
    ${Break}
!macroend

!macro SENTENCE_FUNCTION UN
Function ${UN}sentenceOf
  ${Switch} $Code
    !insertmacro SENTENCE_CASE 10
    !insertmacro SENTENCE_CASE 11
    !insertmacro SENTENCE_CASE 12
    !insertmacro SENTENCE_CASE 13
    !insertmacro SENTENCE_CASE 14
    !insertmacro SENTENCE_CASE 15
    !insertmacro SENTENCE_CASE 16
    !insertmacro SENTENCE_CASE 17
    !insertmacro SENTENCE_CASE 18
    ${Default}
      StrCpy $Sentence "$(OUTCOME_1)"
  ${EndSwitch}
  StrCpy $Sentence "$Sentence$\r$\n$\r$\n$(SEE_LOG) $Log"
FunctionEnd

Function ${UN}endInFailure
  Call ${UN}sentenceOf
  DetailPrint "$Sentence"
  SetErrorLevel $Code
  ${IfNot} ${Silent}
    MessageBox MB_OK|MB_ICONSTOP "$Sentence"
  ${EndIf}
  Abort "$Sentence"
FunctionEnd

; One at a time, whoever began it.
Function ${UN}requireAlone
  System::Call 'kernel32::CreateMutexW(p 0, i 0, w "Global\Vordane.Setup") p .r1 ?e'
  Pop $0
  ${If} $0 = 183
    StrCpy $Code 18
    StrCpy $Log "-"
    Call ${UN}sentenceOf
    SetErrorLevel 18
    ${IfNot} ${Silent}
      MessageBox MB_OK|MB_ICONSTOP "$(OUTCOME_18)"
    ${EndIf}
    Quit
  ${EndIf}
FunctionEnd

; What the command line says of the languages of pages and of the log.
Function ${UN}readCommon
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/LCID=" $1
  ${IfNot} ${Errors}
    StrCpy $LANGUAGE $1
  ${EndIf}
  StrCpy $Log "$TEMP\Vordane-setup.log"
  ClearErrors
  ${GetOptions} $0 "/LOG=" $1
  ${IfNot} ${Errors}
    StrCpy $Log $1
  ${EndIf}
FunctionEnd
!macroend
!insertmacro SENTENCE_FUNCTION ""
!insertmacro SENTENCE_FUNCTION "un."

; The registry's part of everybody or of this user, and the view that a 64-bit system shows first.
!macro CONTEXT
  ${If} ${RunningX64}
    SetRegView 64
  ${EndIf}
  ${If} $Everybody = 1
    SetShellVarContext all
  ${Else}
    SetShellVarContext current
  ${EndIf}
!macroend

; The directory of a suite that is installed, the newest version first; empty without one.
Function findSuite
  StrCpy $R1 ""
  StrCpy $R2 ""
  StrCpy $R0 0
  ${Do}
    EnumRegKey $R3 HKCU "${SETTINGS}" $R0
    ${If} $R3 == ""
      ${ExitDo}
    ${EndIf}
    IntOp $R0 $R0 + 1
    StrLen $R4 $R3
    ReadRegStr $R5 HKCU "${SETTINGS}\$R3" "InstallPath"
    ${If} $R4 = 5
    ${AndIf} $R5 != ""
    ${AndIf} ${FileExists} "$R5*.*"
    ${AndIf} $R3 S> $R2
      StrCpy $R2 $R3
      StrCpy $R1 $R5
    ${EndIf}
  ${Loop}
FunctionEnd

Function proposeDirectory
  Call findSuite
  ${If} $R1 != ""
    StrCpy $INSTDIR $R1
    StrCpy $0 $INSTDIR "" -1
    ${If} $0 == "\"
      StrCpy $INSTDIR $INSTDIR -1
    ${EndIf}
  ${ElseIf} $Everybody = 1
    ${If} ${RunningX64}
      StrCpy $INSTDIR "$PROGRAMFILES64\QUILMAR32\30000"
    ${Else}
      StrCpy $INSTDIR "$PROGRAMFILES\QUILMAR32\30000"
    ${EndIf}
  ${Else}
    StrCpy $INSTDIR "$LOCALAPPDATA\QUILMAR32\30000"
  ${EndIf}
FunctionEnd

; A set of its own needs the suite's folders: chosen "D:\Tools" it stands in D:\Tools\QUILMAR32\30000.
Function completeDirectory
  ${If} ${FileExists} "$INSTDIR\QUIL32\DATABASE\*.*"
    Return
  ${EndIf}
  StrCpy $0 $INSTDIR 11 -16
  ${If} $0 != "\QUILMAR32\"
    StrCpy $INSTDIR "$INSTDIR\QUILMAR32\30000"
  ${EndIf}
FunctionEnd

Function .onInit
  Call readCommon
  Call requireAlone
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/LCID=" $1
  ${If} ${Errors}
  ${AndIfNot} ${Silent}
    !insertmacro MUI_LANGDLL_DISPLAY
  ${EndIf}
  UserInfo::GetAccountType
  Pop $1
  StrCpy $Everybody 0
  ${If} $1 == "Admin"
    StrCpy $Everybody 1
  ${EndIf}
  !macro FLAG NAME VARIABLE VALUE
    ClearErrors
    ${GetOptions} $0 "${NAME}" $1
    ${IfNot} ${Errors}
      StrCpy ${VARIABLE} ${VALUE}
    ${EndIf}
  !macroend
  !insertmacro FLAG "/AllUsers" $Everybody 1
  !insertmacro FLAG "/CurrentUser" $Everybody 0
  !insertmacro FLAG "/Demonstration" $Demonstration 1
  !insertmacro FLAG "/CrashDumps" $CrashDumps 1
  !insertmacro FLAG "/NoShortcuts" $NoShortcuts 1
  !insertmacro FLAG "/Language=" $TextsIn "$1"
  StrCpy $Wait 60
  !insertmacro FLAG "/Wait=" $Wait "$1"
  !insertmacro FLAG "/Words=" $Words "$1"
  ${If} $TextsIn == ""
    ${Select} $LANGUAGE
      ${Case} 1049
        StrCpy $TextsIn ru
      ${Case} 1041
        StrCpy $TextsIn ja
      ${Default}
        StrCpy $TextsIn en
    ${EndSelect}
  ${EndIf}
  !insertmacro CONTEXT
  ${If} $INSTDIR == ""
    Call proposeDirectory
  ${EndIf}
FunctionEnd

; --- the page of choices

Function optionsPage
  !insertmacro MUI_HEADER_TEXT "$(OPTIONS_TITLE)" "$(OPTIONS_SUBTITLE)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateRadioButton} 0 0 100% 12u "$(FOR_ALL)"
  Pop $RadioAll
  ${NSD_CreateRadioButton} 0 14u 100% 12u "$(FOR_ME)"
  Pop $RadioMe
  ${If} $Everybody = 1
    ${NSD_Check} $RadioAll
  ${Else}
    ${NSD_Check} $RadioMe
  ${EndIf}
  UserInfo::GetAccountType
  Pop $1
  ${If} $1 != "Admin"
    EnableWindow $RadioAll 0
  ${EndIf}
  ${NSD_CreateLabel} 0 36u 45% 12u "$(TEXTS_IN)"
  Pop $0
  ${NSD_CreateDropList} 46% 34u 54% 60u ""
  Pop $ListLanguage
  ${NSD_CB_AddString} $ListLanguage "English"
  ${NSD_CB_AddString} $ListLanguage "Русский"
  ${NSD_CB_AddString} $ListLanguage "日本語"
  ${Select} $TextsIn
    ${Case} ru
      ${NSD_CB_SelectString} $ListLanguage "Русский"
    ${Case} ja
      ${NSD_CB_SelectString} $ListLanguage "日本語"
    ${Default}
      ${NSD_CB_SelectString} $ListLanguage "English"
  ${EndSelect}
  ${NSD_CreateLabel} 0 56u 45% 12u "$(WORD_SIZE)"
  Pop $0
  ${NSD_CreateDropList} 46% 54u 54% 60u ""
  Pop $ListWords
  ${NSD_CB_AddString} $ListWords "$(WORDS_SYSTEM)"
  !ifdef BOTH_WORDS
    ${NSD_CB_AddString} $ListWords "$(WORDS_64)"
    ${NSD_CB_AddString} $ListWords "$(WORDS_32)"
  !endif
  ${NSD_CB_SelectString} $ListWords "$(WORDS_SYSTEM)"
  ${NSD_CreateCheckBox} 0 78u 100% 12u "$(DEMONSTRATION)"
  Pop $CheckDemo
  ${If} $Demonstration = 1
    ${NSD_Check} $CheckDemo
  ${EndIf}
  ${NSD_CreateCheckBox} 0 92u 100% 12u "$(CRASH_DUMPS)"
  Pop $CheckDumps
  ${If} $CrashDumps = 1
    ${NSD_Check} $CheckDumps
  ${EndIf}
  ${NSD_CreateLabel} 0 110u 100% 28u "$(KEPT)"
  Pop $0
  nsDialogs::Show
FunctionEnd

Function optionsLeave
  StrCpy $Option $Everybody
  ${NSD_GetState} $RadioAll $Everybody
  ${NSD_GetState} $CheckDemo $Demonstration
  ${NSD_GetState} $CheckDumps $CrashDumps
  SendMessage $ListLanguage ${CB_GETCURSEL} 0 0 $0
  ${Select} $0
    ${Case} 1
      StrCpy $TextsIn ru
    ${Case} 2
      StrCpy $TextsIn ja
    ${Default}
      StrCpy $TextsIn en
  ${EndSelect}
  SendMessage $ListWords ${CB_GETCURSEL} 0 0 $0
  ${Select} $0
    ${Case} 1
      StrCpy $Words x64
    ${Case} 2
      StrCpy $Words x86
    ${Default}
      StrCpy $Words ""
  ${EndSelect}
  ${If} $Option != $Everybody
    !insertmacro CONTEXT
    Call proposeDirectory
  ${EndIf}
FunctionEnd

Function directoryLeave
  Call completeDirectory
FunctionEnd

; --- the work

; vordane-tools of one word size; the exit code goes to $Code.
Function runInstall
  Exch $R9
  StrCpy $R8 '"$PLUGINSDIR\package\$R9\ADDINS\vordane-tools.exe" install "$INSTDIR" --package "$PLUGINSDIR\package" --language $TextsIn --log "$Log"'
  ${If} $Words != ""
    StrCpy $R8 "$R8 --words $Words"
  ${EndIf}
  ${If} $Demonstration = 1
    StrCpy $R8 "$R8 --demonstration"
  ${EndIf}
  ${If} $CrashDumps = 1
    StrCpy $R8 "$R8 --crash-dumps"
  ${EndIf}
  ${If} $Everybody <> 1
    StrCpy $R8 "$R8 --this-user"
  ${EndIf}
  ${If} ${Silent}
    StrCpy $R8 "$R8 --wait $Wait"
  ${Else}
    StrCpy $R8 "$R8 --wait 2"
  ${EndIf}
  nsExec::ExecToLog "$R8"
  Pop $Code
  Pop $R9
FunctionEnd

Section
  !insertmacro CONTEXT
  Call completeDirectory
  InitPluginsDir
  SetOutPath "$PLUGINSDIR\package"
  ClearErrors
  File /r "${PACKAGE}/*"
  CreateDirectory "$PLUGINSDIR\package\common\ADDINS\SETUP"
  WriteUninstaller "$PLUGINSDIR\package\common\ADDINS\SETUP\remove.exe"
  ${If} ${Errors}
    StrCpy $Code 12
    Call endInFailure
  ${EndIf}
  SetOutPath "$PLUGINSDIR"

  again:
  ${If} $Words == "x86"
  ${OrIfNot} ${FileExists} "$PLUGINSDIR\package\x64\*.*"
    Push x86
  ${Else}
    Push x64
  ${EndIf}
  Call runInstall
  ; Access files are read by an engine that is 32-bit.
  ${If} $Code = 16
  ${AndIf} $Words == ""
  ${AndIf} ${FileExists} "$PLUGINSDIR\package\x64\*.*"
  ${AndIf} ${FileExists} "$PLUGINSDIR\package\x86\*.*"
    Push x86
    Call runInstall
  ${EndIf}
  ${If} $Code = 10
  ${AndIfNot} ${Silent}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(IN_USE)" IDRETRY again
  ${EndIf}
  ${If} $Code != 0
    Call endInFailure
  ${EndIf}

  StrCpy $0 $INSTDIR "" -5
  StrCpy $R7 "${UNINSTALL}\${PRODUCT} $0"
  ${GetSize} "$INSTDIR\ADDINS" "/S=0K" $1 $2 $3
  IntFmt $1 "0x%08X" $1
  !macro ENTRY NAME VALUE
    WriteRegStr SHCTX $R7 "${NAME}" '${VALUE}'
  !macroend
  !insertmacro ENTRY DisplayName "${PRODUCT} ${VERSION}"
  !insertmacro ENTRY DisplayVersion "${VERSION}"
  !insertmacro ENTRY DisplayIcon "$INSTDIR\ADDINS\VORDANE.EXE,0"
  !insertmacro ENTRY InstallLocation "$INSTDIR"
  !insertmacro ENTRY UninstallString '"$INSTDIR\ADDINS\SETUP\remove.exe"'
  !insertmacro ENTRY QuietUninstallString '"$INSTDIR\ADDINS\SETUP\remove.exe" /S'
  WriteRegDWORD SHCTX $R7 EstimatedSize $1
  WriteRegDWORD SHCTX $R7 NoModify 1
  WriteRegDWORD SHCTX $R7 NoRepair 1

  ${If} $NoShortcuts <> 1
    CreateDirectory "$SMPROGRAMS\${PRODUCT}"
    ${If} ${FileExists} "$INSTDIR\SIM\Zulsim.exe"
      SetOutPath "$INSTDIR\SIM"
      CreateShortcut "$SMPROGRAMS\${PRODUCT}\$(LINK_DEMONSTRATION).lnk" "$INSTDIR\ADDINS\VORDANE.EXE" "PBX-1"
      SetOutPath "$PLUGINSDIR"
    ${EndIf}
    ${If} ${FileExists} "$INSTDIR\ADDINS\HELP\GUIDE\guide.html"
      CreateShortcut "$SMPROGRAMS\${PRODUCT}\$(LINK_GUIDE).lnk" "$INSTDIR\ADDINS\HELP\GUIDE\guide.html"
    ${EndIf}
    CreateShortcut "$SMPROGRAMS\${PRODUCT}\$(LINK_REMOVE).lnk" "$INSTDIR\ADDINS\SETUP\remove.exe"
  ${EndIf}
  SetErrorLevel 0
SectionEnd

; --- removal

Function un.onInit
  Call un.readCommon
  Call un.requireAlone
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/Everything" $1
  ${IfNot} ${Errors}
    StrCpy $Everything 1
  ${EndIf}
  StrCpy $Wait 60
  ClearErrors
  ${GetOptions} $0 "/Wait=" $1
  ${IfNot} ${Errors}
    StrCpy $Wait $1
  ${EndIf}
  GetFullPathName $Root "$INSTDIR\..\.."
  ; Registered for everybody is what the list of programs of everybody names.
  ${If} ${RunningX64}
    SetRegView 64
  ${EndIf}
  StrCpy $1 $Root "" -5
  ReadRegStr $2 HKLM "${UNINSTALL}\${PRODUCT} $1" InstallLocation
  StrCpy $Everybody 0
  ${If} $2 == $Root
    StrCpy $Everybody 1
  ${EndIf}
  !insertmacro CONTEXT
FunctionEnd

Function un.optionsPage
  !insertmacro MUI_HEADER_TEXT "$(REMOVE_TITLE)" "$(REMOVE_SUBTITLE)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateLabel} 0 0 100% 24u "$Root"
  Pop $0
  ${NSD_CreateLabel} 0 30u 100% 36u "$(REMOVE_KEPT)"
  Pop $0
  ${NSD_CreateCheckBox} 0 72u 100% 12u "$(REMOVE_EVERYTHING)"
  Pop $CheckDemo
  nsDialogs::Show
FunctionEnd

Function un.optionsLeave
  ${NSD_GetState} $CheckDemo $Everything
FunctionEnd

Section un.Remove
  InitPluginsDir
  ; The program that removes can't be among what it removes.
  CopyFiles /SILENT "$Root\ADDINS\vordane-tools.exe" "$PLUGINSDIR\vordane-tools.exe"
  StrCpy $R8 '"$PLUGINSDIR\vordane-tools.exe" uninstall "$Root" --log "$Log"'
  ${If} $Everything = 1
    StrCpy $R8 "$R8 --everything"
  ${EndIf}
  SetOutPath "$PLUGINSDIR"
  again:
  ${If} ${Silent}
    nsExec::ExecToLog "$R8 --wait $Wait"
  ${Else}
    nsExec::ExecToLog "$R8 --wait 2"
  ${EndIf}
  Pop $Code
  ${If} $Code = 10
  ${AndIfNot} ${Silent}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(IN_USE)" IDRETRY again
  ${EndIf}
  ${If} $Code != 0
    Call un.endInFailure
  ${EndIf}
  StrCpy $0 $Root "" -5
  DeleteRegKey SHCTX "${UNINSTALL}\${PRODUCT} $0"
  ; Links in whatever language they were made.
  Delete "$SMPROGRAMS\${PRODUCT}\*.lnk"
  RMDir "$SMPROGRAMS\${PRODUCT}"
  SetErrorLevel 0
SectionEnd
