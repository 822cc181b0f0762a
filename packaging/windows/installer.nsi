; SPDX-License-Identifier: GPL-3.0-or-later
;
; Installs for the current user alone, without elevated rights. Needs the definitions
;   VERSION  of the program, "1.2.3"
;   PROGRAM  path of tessaport-monitor.exe
;   CLOSER   path of tessaport-closer.exe
;   PAGE     path of the user's page, one file of HTML
;   ICON     path of the program's icon
;   OUTPUT   path of the installer to make
; With /S it asks nothing; /D=C:\folder, last and unquoted, chooses another folder.

Target amd64-unicode
SetCompressor /SOLID lzma

!include LogicLib.nsh
!include MUI2.nsh
!include WordFunc.nsh

!define NAME "TessaPort Team Monitor"
!define COMPANY "TessaPort"
!define FILE "tessaport-monitor.exe"
!define UPDATER "TPMC-update.exe"
!define PAGE_FILE "user.ru.html"
!define PAGE_SHORTCUT "$SMPROGRAMS\${NAME}, руководство.lnk"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"
!define RUN_KEY "Software\Microsoft\Windows\CurrentVersion\Run"
; The value for the start at logon bears no quotes, so that the folder should have no blanks. That of
; earlier versions had.
!define FOLDER "$LOCALAPPDATA\Programs\${COMPANY}"
!define EARLIER_FOLDER "$LOCALAPPDATA\Programs\${NAME}"

Name "${NAME}"
OutFile "${OUTPUT}"
RequestExecutionLevel user
ManifestDPIAware true
InstallDir "${FOLDER}"
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"
BrandingText "${NAME} ${VERSION}"

VIProductVersion "${VERSION}.0"
VIAddVersionKey "ProductName" "${NAME}"
VIAddVersionKey "ProductVersion" "${VERSION}"
VIAddVersionKey "FileVersion" "${VERSION}"
VIAddVersionKey "FileDescription" "${NAME}"
VIAddVersionKey "CompanyName" "${COMPANY}"
VIAddVersionKey "LegalCopyright" "GPL-3.0-or-later"

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_FUNCTION startProgram
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "Russian"

; Whether a copy ran before and was ended for the installation.
Var wasRunning

; A running monitor ends by itself, with everything saved, when told to under this name.
!macro closeMonitor
    InitPluginsDir
    File "/oname=$PLUGINSDIR\${UPDATER}" "${CLOSER}"
    ${Do}
        ExecWait '"$PLUGINSDIR\${UPDATER}"' $wasRunning
        ${If} $wasRunning <> 2
            ${ExitDo}
        ${EndIf}
        ${If} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION \
            "${NAME} ещё работает и не завершается. Завершите программу через её меню и повторите." \
            /SD IDCANCEL IDCANCEL`
            SetErrorLevel 2
            Quit
        ${EndIf}
    ${Loop}
!macroend

Function .onInit
    ; An installation is renewed where it is, but for this.
    ${If} $INSTDIR == "${EARLIER_FOLDER}"
        StrCpy $INSTDIR "${FOLDER}"
    ${EndIf}
FunctionEnd

; $0 becomes what starts at logon, with the slashes of Windows: the program writes forward ones.
!macro readRunValue
    ReadRegStr $0 HKCU "${RUN_KEY}" "${NAME}"
    ${WordReplace} "$0" "/" "\" "+" $0
!macroend

; Brings along what an earlier version left in its folder.
Function leaveEarlierFolder
    ${IfNot} ${FileExists} "${EARLIER_FOLDER}\${FILE}"
        Return
    ${EndIf}
    Rename "${EARLIER_FOLDER}\${UPDATER}" "$INSTDIR\${UPDATER}"
    Delete "${EARLIER_FOLDER}\${UPDATER}"
    Delete "${EARLIER_FOLDER}\${FILE}"
    Delete "${EARLIER_FOLDER}\uninstall.exe"
    RMDir "${EARLIER_FOLDER}"
    !insertmacro readRunValue
    ${If} $0 == "${EARLIER_FOLDER}\${FILE}"
        ${WordReplace} "$INSTDIR\${FILE}" "\" "/" "+" $0
        WriteRegStr HKCU "${RUN_KEY}" "${NAME}" "$0"
    ${EndIf}
FunctionEnd

Function startProgram
    ; The program looks for its update program in the folder it is started in.
    SetOutPath "$INSTDIR"
    Exec '"$INSTDIR\${FILE}"'
FunctionEnd

Section
    !insertmacro closeMonitor
    SetOutPath "$INSTDIR"
    File "/oname=${FILE}" "${PROGRAM}"
    File "/oname=${PAGE_FILE}" "${PAGE}"
    Call leaveEarlierFolder
    WriteUninstaller "$INSTDIR\uninstall.exe"
    CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\${FILE}"
    CreateShortcut "${PAGE_SHORTCUT}" "$INSTDIR\${PAGE_FILE}"

    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\${FILE}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "Publisher" "${COMPANY}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
    SectionGetSize 0 $0
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0

    ; Whoever works goes on working; with a page to ask on, that asks.
    ${If} ${Silent}
    ${AndIf} $wasRunning = 1
        Call startProgram
    ${EndIf}
SectionEnd

Section "un.Remove"
    !insertmacro closeMonitor
    ; A folder in use as someone's working directory can't be removed.
    SetOutPath "$TEMP"

    ; The entry of the start at logon goes if it means this copy.
    !insertmacro readRunValue
    ${If} $0 == "$INSTDIR\${FILE}"
        DeleteRegValue HKCU "${RUN_KEY}" "${NAME}"
    ${EndIf}

    Delete "$SMPROGRAMS\${NAME}.lnk"
    Delete "${PAGE_SHORTCUT}"
    Delete "$INSTDIR\${FILE}"
    Delete "$INSTDIR\${PAGE_FILE}"
    Delete "$INSTDIR\${UPDATER}"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    DeleteRegKey HKCU "${UNINSTALL_KEY}"
    ; The data directory in the user's home holds reports that may not have been sent yet: it stays.
SectionEnd
