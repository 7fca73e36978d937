Attribute VB_Name = "VordaneDemo"
' A host in VBA, bound early: import this file and VordaneHost.cls into the project of any Office document (Alt+F11,
' File, Import), set a reference to "Displays and Manages PBX Fault Lists." (Tools, References), and run VordaneRun from
' the immediate window (Ctrl+G), which shows every notification.
'
' Not run where the product is built, which has no Office. On a workstation it is done by hand: the checklist has a row
' for it.
Option Explicit

Public Sub VordaneRun(Optional Exchange As String = "PBX-1", Optional Key As String = "1", Optional Seconds As Long = 60)
  Dim Lent As VordaneHost
  Dim Layer As Vordane10013.cOLELayer
  Dim Last As Date

  On Error GoTo Failed
  Set Lent = New VordaneHost
  Set Lent.oPBX = CreateObject("CalderinProj30001.cPBXOLE")
  Set Layer = New Vordane10013.cOLELayer
  Debug.Print "RegisterPBX " & Layer.RegisterPBX(Exchange, Lent, 1)
  ShowRecord
  Debug.Print "RunSchedule " & Layer.RunSchedule(Key)
  Last = DateAdd("s", Seconds, Now)
  Do Until (Lent.Ended And Lent.Unloaded) Or Now > Last
    DoEvents    ' lets the notifications in
  Loop
  If Lent.Ended And Lent.Unloaded Then Debug.Print "done" Else Debug.Print "the job did not end in time"

LetGo:
  ' The add-in's process ends with the last reference to its object.
  On Error Resume Next
  Set Layer = Nothing
  Set Lent.oPBX = Nothing
  Exit Sub

Failed:
  Debug.Print "error 0x" & Hex(Err.Number) & " " & Err.Description
  Resume LetGo
End Sub

' A request record, with an argument left out and with Null.
Private Sub ShowRecord()
  Dim Record As Vordane10013.cListRequest
  Set Record = New Vordane10013.cListRequest
  Record.AddToList "LEA0"
  Record.AddToList "EA1", "00", Null
  Record.CMD(0) = "LEA1"
  Debug.Print "a record of " & Record.Count & ": " & Record.CMD(0) & " " & Record.CMD(1) & " [" & Record.SecondData(1) & "]"
End Sub
