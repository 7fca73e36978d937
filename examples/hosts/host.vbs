' A host in VBScript. It lends the add-in what a host has, runs a job unattended, prints every notification, and lets go.
'
'   cscript //nologo host.vbs [EXCHANGE [KEY [SECONDS]]]      usually PBX-1 1 60
'
' Exit code: 0 the job's end was notified, 1 it was not, 2 an error.
'
' Not run where the product is built, which has no VBScript that lends objects; on a workstation the kit for Windows
' runs it and compares what it prints.
Option Explicit

Dim ended, unloaded
ended = False
unloaded = False

Function Argument(index, usual)
  Argument = usual
  If WScript.Arguments.Count > index Then Argument = WScript.Arguments(index)
End Function

Function Quoted(value)
  Quoted = CStr(value)
  If VarType(value) = vbString Then Quoted = """" & value & """"
End Function

Class AccessComponent
  Public Function getsysinfo(pbx)
    getsysinfo = 0
  End Function
  Public Function GetMPVersion(pbx)
    GetMPVersion = "SC-1000 4.2"
  End Function
End Class

Class Host
  Public oPBX
  Public oZUL

  Public Sub ShowMessage(text)
    WScript.Echo "ShowMessage " & Quoted(text)
  End Sub
  Public Sub ShowCode(code)
    WScript.Echo "ShowCode " & code
  End Sub
  Public Sub TurnOnFlow()
    WScript.Echo "TurnOnFlow"
  End Sub
  Public Sub TurnOffFlow()
    WScript.Echo "TurnOffFlow"
  End Sub
  Public Sub DisplayHelp(file)
    WScript.Echo "DisplayHelp " & Quoted(file)
  End Sub
  Public Function PrintReport(database, file, selection, sort1, options, sort2, sort3, sort4, sort5, sort6)
    WScript.Echo "PrintReport " & Quoted(selection)
    PrintReport = "This host has no printer."
  End Function
  Public Sub EndProcess(job, code)
    WScript.Echo "EndProcess " & Quoted(job) & " " & code
    ended = True
  End Sub
  Public Sub UnloadChild(id)
    WScript.Echo "UnloadChild " & id
    unloaded = True
  End Sub
  Public Sub UnloadChild2(id)
    WScript.Echo "UnloadChild2 " & id
  End Sub
  Public Sub EndCreateSchedule(cancelled)
    WScript.Echo "EndCreateSchedule " & CStr(cancelled)
  End Sub
  ' Arguments come by reference: what is assigned to the last one is the answer. Empty: the window is centred.
  Public Sub GetComData(application, name, value)
    WScript.Echo "GetComData " & Quoted(application) & " " & Quoted(name)
    value = ""
  End Sub
  Public Sub REGComData(application, name, value)
    WScript.Echo "REGComData " & Quoted(application) & " " & Quoted(name) & " " & Quoted(value)
  End Sub
End Class

' The whole conversation; an error in the middle of it comes back to the caller.
Function Converse(exchange, key, seconds)
  Dim lent, layer, failed, last
  Set lent = New Host
  Set lent.oZUL = New AccessComponent
  Set lent.oPBX = CreateObject("CalderinProj30001.cPBXOLE")
  Set layer = CreateObject("Vordane10013.cOLELayer")
  failed = layer.RegisterPBX(exchange, lent, 1)
  WScript.Echo "RegisterPBX " & LCase(CStr(failed))
  WScript.Echo "RunSchedule " & layer.RunSchedule(key)
  last = Timer + seconds
  Do Until (ended And unloaded) Or Timer > last
    WScript.Sleep 20    ' lets the notifications in
  Loop
  Converse = 1
  If ended And unloaded Then Converse = 0
  ' Letting go: the add-in's process ends with the last reference to its object.
  Set layer = Nothing
  Set lent.oPBX = Nothing
End Function

Dim result
result = 2
On Error Resume Next
result = Converse(Argument(0, "PBX-1"), Argument(1, "1"), CLng(Argument(2, "60")))
If Err.Number <> 0 Then WScript.Echo "error 0x" & LCase(Hex(Err.Number)) & " " & Err.Description
On Error GoTo 0
WScript.Echo "done " & result
WScript.Quit result
