; SPDX-License-Identifier: MIT
; The installer of both widths. scripts/make-installer.sh calls it with
;   VERSION   8.1.0
;   FILES     a folder with 64 and 32 (the component, its texts and its manifest, the sample program; in 32 the command),
;             docs, examples, development, LICENSE.txt
;   OUTPUT    the installer
;   SIGN      a command that signs the file whose name follows it; may be missing
;
; On the command line: /S asks nothing; /AllUsers or /CurrentUser says for whom; /PATH puts the command on the Path,
; /PATH=0 takes it off again; /D=FOLDER, the last one, says where.
; Running it again repairs what is there, or brings it to this version. The settings of hosts are theirs: they stay.

Unicode true
SetCompressor /SOLID lzma
ManifestDPIAware true

!define PRODUCT "KELReader81U"
!define PUBLISHER "The KELReader81U developers"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${PRODUCT}"

!define MULTIUSER_EXECUTIONLEVEL Highest
!define MULTIUSER_MUI
!define MULTIUSER_INSTALLMODE_COMMANDLINE
!define MULTIUSER_USE_PROGRAMFILES64
!define MULTIUSER_INSTALLMODE_INSTDIR "${PRODUCT}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_INSTDIR_REGISTRY_VALUENAME "InstallLocation"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MULTIUSER_INSTALLMODE_DEFAULT_REGISTRY_VALUENAME "InstallLocation"

!include MultiUser.nsh
!include MUI2.nsh
!include x64.nsh
!include FileFunc.nsh
!include Path.nsh

Name "${PRODUCT}"
OutFile "${OUTPUT}"
BrandingText "${PRODUCT} ${VERSION}"
VIProductVersion "${VERSION}.0"
VIAddVersionKey ProductName "${PRODUCT}"
VIAddVersionKey ProductVersion "${VERSION}"
VIAddVersionKey FileVersion "${VERSION}"
VIAddVersionKey FileDescription "Optical mark readers: setup"
VIAddVersionKey CompanyName "${PUBLISHER}"
VIAddVersionKey LegalCopyright "${PUBLISHER}"
!ifdef SIGN
    !finalize '${SIGN} "%1"'
    !uninstfinalize '${SIGN} "%1"'
!endif

!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_LICENSE "${FILES}/LICENSE.txt"
!insertmacro MULTIUSER_PAGE_INSTALLMODE
!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "German"
!insertmacro MUI_LANGUAGE "French"
!insertmacro MUI_LANGUAGE "Spanish"

LangString FAILED ${LANG_ENGLISH} "The component could not be registered. End the programs that use it, and run this setup again."
LangString FAILED ${LANG_GERMAN} "Die Komponente konnte nicht registriert werden. Beenden Sie die Programme, die sie benutzen, und starten Sie die Installation erneut."
LangString FAILED ${LANG_FRENCH} "Le composant n'a pas pu être enregistré. Fermez les programmes qui l'utilisent et relancez l'installation."
LangString FAILED ${LANG_SPANISH} "No se ha podido registrar el componente. Cierre los programas que lo utilizan y vuelva a ejecutar la instalación."
LangString COMPONENT ${LANG_ENGLISH} "Component and command"
LangString COMPONENT ${LANG_GERMAN} "Komponente und Befehl"
LangString COMPONENT ${LANG_FRENCH} "Composant et commande"
LangString COMPONENT ${LANG_SPANISH} "Componente y comando"
LangString COMPONENT_TEXT ${LANG_ENGLISH} "The component for programs of 32 and 64 bits, the command kelreader, documents and samples."
LangString COMPONENT_TEXT ${LANG_GERMAN} "Die Komponente für Programme mit 32 und 64 Bit, der Befehl kelreader, Dokumentation und Beispiele."
LangString COMPONENT_TEXT ${LANG_FRENCH} "Le composant pour les programmes 32 et 64 bits, la commande kelreader, la documentation et les exemples."
LangString COMPONENT_TEXT ${LANG_SPANISH} "El componente para programas de 32 y 64 bits, el comando kelreader, la documentación y los ejemplos."
LangString ON_PATH ${LANG_ENGLISH} "kelreader on the Path"
LangString ON_PATH ${LANG_GERMAN} "kelreader im Suchpfad"
LangString ON_PATH ${LANG_FRENCH} "kelreader dans le Path"
LangString ON_PATH ${LANG_SPANISH} "kelreader en el Path"
LangString ON_PATH_TEXT ${LANG_ENGLISH} "Lets you type kelreader in any folder of a command prompt."
LangString ON_PATH_TEXT ${LANG_GERMAN} "Der Befehl kelreader lässt sich in der Eingabeaufforderung aus jedem Ordner aufrufen."
LangString ON_PATH_TEXT ${LANG_FRENCH} "Permet de taper kelreader dans n'importe quel dossier de l'invite de commandes."
LangString ON_PATH_TEXT ${LANG_SPANISH} "Permite escribir kelreader en cualquier carpeta del símbolo del sistema."
LangString GUIDE ${LANG_ENGLISH} "Guide for programmers"
LangString GUIDE ${LANG_GERMAN} "Anleitung für Programmierer"
LangString GUIDE ${LANG_FRENCH} "Guide du programmeur"
LangString GUIDE ${LANG_SPANISH} "Guía para programadores"
LangString READERS ${LANG_ENGLISH} "The readers"
LangString READERS ${LANG_GERMAN} "Die Lesegeräte"
LangString READERS ${LANG_FRENCH} "Les lecteurs"
LangString READERS ${LANG_SPANISH} "Los lectores"
LangString SAMPLES ${LANG_ENGLISH} "Samples"
LangString SAMPLES ${LANG_GERMAN} "Beispiele"
LangString SAMPLES ${LANG_FRENCH} "Exemples"
LangString SAMPLES ${LANG_SPANISH} "Ejemplos"
LangString REMOVAL ${LANG_ENGLISH} "Uninstall"
LangString REMOVAL ${LANG_GERMAN} "Deinstallieren"
LangString REMOVAL ${LANG_FRENCH} "Désinstaller"
LangString REMOVAL ${LANG_SPANISH} "Desinstalar"

; The regsvr32 of a width works in its own view of the registry. This program is 32 bits wide.
!macro Regsvr32 WIDTH ARGUMENTS
    !if ${WIDTH} == 64
        ${DisableX64FSRedirection}
    !endif
    StrCpy $1 "$SYSDIR\regsvr32.exe"
    StrCpy $2 "/s ${ARGUMENTS}"
    ${If} $MultiUser.InstallMode == "CurrentUser"
        StrCpy $2 "$2 /n /i:user"
    ${EndIf}
    ExecWait '"$1" $2 "$INSTDIR\${WIDTH}\${PRODUCT}.dll"' $0
    !if ${WIDTH} == 64
        ${EnableX64FSRedirection}
    !endif
!macroend

; A program or a DLL that is in use can be renamed, and goes with the next start of the system.
!macro SetAside FILE
    ${If} ${FileExists} "$OUTDIR\${FILE}"
        GetTempFileName $3 "$OUTDIR"
        Delete "$3"
        Rename "$OUTDIR\${FILE}" "$3"
        Delete /REBOOTOK "$3"
    ${EndIf}
!macroend

!macro Install WIDTH
    SetOutPath "$INSTDIR\${WIDTH}"
    !insertmacro SetAside "${PRODUCT}.dll"
    File "${FILES}/${WIDTH}/${PRODUCT}.dll"
    File "${FILES}/${WIDTH}/${PRODUCT}.manifest"
    File "${FILES}/${WIDTH}/LKELReader81.txt"
    File "${FILES}/${WIDTH}/ReadBatch.exe"
    File "${FILES}/${WIDTH}/ReadBatch.exe.manifest"
    !insertmacro Regsvr32 ${WIDTH} ""
    ${If} $0 != 0
        MessageBox MB_ICONSTOP "$(FAILED)" /SD IDOK
        SetErrorLevel 2
        Abort "$(FAILED)"
    ${EndIf}
!macroend

!macro Remove WIDTH
    ${If} ${FileExists} "$INSTDIR\${WIDTH}\${PRODUCT}.dll"
        !insertmacro Regsvr32 ${WIDTH} "/u"
        Delete /REBOOTOK "$INSTDIR\${WIDTH}\${PRODUCT}.dll"
        Delete "$INSTDIR\${WIDTH}\${PRODUCT}.manifest"
        Delete "$INSTDIR\${WIDTH}\LKELReader81.txt"
        Delete "$INSTDIR\${WIDTH}\ReadBatch.exe"
        Delete "$INSTDIR\${WIDTH}\ReadBatch.exe.manifest"
        RMDir "$INSTDIR\${WIDTH}"
    ${EndIf}
!macroend

; There is one command, of 32 bits: it alone can load the library of the USB readers' maker.
!macro InstallCommand
    SetOutPath "$INSTDIR\32\simulated"
    File "${FILES}/32/simulated/OMRAPI.dll"
    SetOutPath "$INSTDIR\32"
    !insertmacro SetAside "kelreader.exe"
    File "${FILES}/32/kelreader.exe"
!macroend

!macro RemoveCommand
    Delete /REBOOTOK "$INSTDIR\32\kelreader.exe"
    Delete "$INSTDIR\32\simulated\OMRAPI.dll"
    RMDir "$INSTDIR\32\simulated"
!macroend

!macro RemoveDocuments
    RMDir /r "$INSTDIR\docs"
    RMDir /r "$INSTDIR\examples"
    RMDir /r "$INSTDIR\development"
    RMDir /r "$SMPROGRAMS\${PRODUCT}"
!macroend

Section "$(COMPONENT)" COMPONENT_SECTION
    SectionIn RO
    !insertmacro RemoveDocuments ; those of an older version
    ${If} ${RunningX64}
        !insertmacro Install 64
    ${EndIf}
    !insertmacro Install 32
    !insertmacro InstallCommand

    SetOutPath "$INSTDIR"
    File "${FILES}/LICENSE.txt"
    File /r "${FILES}/docs"
    File /r "${FILES}/examples"
    File /r "${FILES}/development"
    WriteUninstaller "$INSTDIR\uninstall.exe"
    ${If} "$EXEPATH" != "$INSTDIR\${PRODUCT}-setup.exe"
        CopyFiles /SILENT "$EXEPATH" "$INSTDIR\${PRODUCT}-setup.exe" ; for repairs
    ${EndIf}

    CreateDirectory "$SMPROGRAMS\${PRODUCT}"
    CreateShortcut "$SMPROGRAMS\${PRODUCT}\$(GUIDE).lnk" "$WINDIR\notepad.exe" '"$INSTDIR\docs\windows.md"'
    CreateShortcut "$SMPROGRAMS\${PRODUCT}\$(READERS).lnk" "$INSTDIR\docs\readers"
    CreateShortcut "$SMPROGRAMS\${PRODUCT}\$(SAMPLES).lnk" "$INSTDIR\examples"
    CreateShortcut "$SMPROGRAMS\${PRODUCT}\$(REMOVAL).lnk" "$INSTDIR\uninstall.exe"

    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\${PRODUCT}-setup.exe"
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "ModifyPath" '"$INSTDIR\${PRODUCT}-setup.exe" /$MultiUser.InstallMode'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe" /$MultiUser.InstallMode'
    WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S /$MultiUser.InstallMode'
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" "$0"
SectionEnd

Section /o "$(ON_PATH)" PATH_SECTION
SectionEnd

Section "-Path"
    StrCpy $R0 "$INSTDIR\32"
    ${If} ${SectionIsSelected} ${PATH_SECTION}
        StrCpy $R1 1
    ${Else}
        StrCpy $R1 0
    ${EndIf}
    WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "CommandOnPath" $R1
    Call ChangePath
SectionEnd

!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
    !insertmacro MUI_DESCRIPTION_TEXT ${COMPONENT_SECTION} "$(COMPONENT_TEXT)"
    !insertmacro MUI_DESCRIPTION_TEXT ${PATH_SECTION} "$(ON_PATH_TEXT)"
!insertmacro MUI_FUNCTION_DESCRIPTION_END

!insertmacro ChangePath ""
!insertmacro ChangePath "un."

Section un.
    StrCpy $R0 "$INSTDIR\32"
    StrCpy $R1 0
    Call un.ChangePath
    ${If} ${RunningX64}
        !insertmacro Remove 64
    ${EndIf}
    !insertmacro RemoveCommand
    !insertmacro Remove 32
    !insertmacro RemoveDocuments
    Delete "$INSTDIR\LICENSE.txt"
    Delete "$INSTDIR\${PRODUCT}-setup.exe"
    Delete "$INSTDIR\uninstall.exe"
    RMDir "$INSTDIR"
    DeleteRegKey SHCTX "${UNINSTALL_KEY}"
SectionEnd

Function .onInit
    !insertmacro MULTIUSER_INIT
    ReadRegDWORD $0 SHCTX "${UNINSTALL_KEY}" "CommandOnPath" ; as it is
    ${GetParameters} $1
    ${GetOptions} $1 "/PATH" $2
    ${IfNot} ${Errors}
        StrCpy $0 1
        ${If} $2 == "=0"
            StrCpy $0 0
        ${EndIf}
    ${EndIf}
    ${If} $0 = 1
        !insertmacro SelectSection ${PATH_SECTION}
    ${EndIf}
FunctionEnd

Function un.onInit
    !insertmacro MULTIUSER_UNINIT
FunctionEnd
