VERSION 5.00
Begin VB.Form frmRead 
   Caption         =   "Sheets"
   ClientHeight    =   4095
   ClientLeft      =   60
   ClientTop       =   345
   ClientWidth     =   6135
   LinkTopic       =   "frmRead"
   ScaleHeight     =   4095
   ScaleWidth      =   6135
   Begin VB.CommandButton cmdCancel 
      Cancel          =   -1  'True
      Caption         =   "Cancel"
      Enabled         =   0   'False
      Height          =   375
      Left            =   4680
      TabIndex        =   3
      Top             =   3600
      Width           =   1335
   End
   Begin VB.CommandButton cmdRead 
      Caption         =   "Read"
      Default         =   -1  'True
      Height          =   375
      Left            =   3240
      TabIndex        =   2
      Top             =   3600
      Width           =   1335
   End
   Begin VB.CommandButton cmdOptions 
      Caption         =   "Options..."
      Height          =   375
      Left            =   120
      TabIndex        =   1
      Top             =   3600
      Width           =   1335
   End
   Begin VB.ListBox lstMarks 
      Height          =   3375
      Left            =   120
      TabIndex        =   0
      Top             =   120
      Width           =   5895
   End
End
Attribute VB_Name = "frmRead"
Attribute VB_GlobalNameSpace = False
Attribute VB_Creatable = False
Attribute VB_PredeclaredId = True
Attribute VB_Exposed = False
' SPDX-License-Identifier: MIT
' Reads batches of ten sheets and lists their marks. The project has a reference to
' "KELReader 8.1 - Optical Mark Readers" in its 32-bit edition, since Visual Basic 6 makes 32-bit programs.
Option Explicit

Private Const SettingsKey = "Software\VB and VBA Program Settings\ReadSheets\Reader"

Private WithEvents oReader As KELReader81U.clsKELReader
Private iSheets As Integer

Private Sub Form_Load()
    Set oReader = New KELReader81U.clsKELReader
    oReader.LoadSettings kelReaderRegistryKeyCurrentUser, SettingsKey
End Sub

Private Sub Form_Unload(Cancel As Integer)
    If cmdCancel.Enabled Then
        ' The batch ends first.
        oReader.CancelScan = True
        Cancel = True
        Exit Sub
    End If
    Set oReader = Nothing
End Sub

Private Sub cmdOptions_Click()
    If oReader.ShowOptions(Me) Then oReader.SaveSettings kelReaderRegistryKeyCurrentUser, SettingsKey
End Sub

Private Sub cmdRead_Click()
    Dim lCount As Long
    Dim iRows(1 To 1) As Integer, iCols(1 To 1) As Integer

    iRows(1) = 63 ' of page 1
    iCols(1) = 48
    oReader.Side1Rows = iRows
    oReader.Side1Cols = iCols
    oReader.RecognitionMode = kelRecognitionTypePage

    lstMarks.Clear
    iSheets = 0
    ' What must not be pressed while a read is under way.
    cmdRead.Enabled = False
    cmdOptions.Enabled = False
    cmdCancel.Enabled = True
    oReader.ReadBatch False, 10, lCount
    cmdCancel.Enabled = False
    cmdOptions.Enabled = True
    cmdRead.Enabled = True
End Sub

Private Sub cmdCancel_Click()
    oReader.CancelScan = True
End Sub

Private Sub oReader_ReadSheet(iSide1Array() As Integer, iSide2Array() As Integer, sBarcodeArray() As String, _
                              bReject As Boolean)
    Dim iRow As Integer, iCol As Integer

    iSheets = iSheets + 1
    lstMarks.AddItem "Sheet " & iSheets & " " & Barcodes(sBarcodeArray)
    For iRow = 1 To UBound(iSide1Array, 1)
        For iCol = 1 To UBound(iSide1Array, 2)
            If iSide1Array(iRow, iCol) <> 0 Then
                lstMarks.AddItem "  row " & iRow & ", column " & iCol & ": " & iSide1Array(iRow, iCol)
            End If
        Next iCol
    Next iRow
End Sub

' A sheet without barcodes has an array without dimensions, which cannot be joined.
Private Function Barcodes(sBarcodeArray() As String) As String
    On Error Resume Next
    Barcodes = Join(sBarcodeArray)
End Function
