# A host in Windows PowerShell. It lends the add-in what a host has, runs a job unattended, prints every notification,
# and lets go. The objects that it lends are of a .NET class, since PowerShell's own can't be called from outside.
#
#   powershell -NoProfile -ExecutionPolicy Bypass -Sta -File host.ps1 [EXCHANGE [KEY [SECONDS]]]     usually PBX-1 1 60
#
# Exit code: 0 the job's end was notified, 1 it was not, 2 an error.
#
# Not run where the product is built, which has no PowerShell; on a workstation the kit for Windows runs it and compares
# what it prints.
param([string] $Exchange = 'PBX-1', [string] $Key = '1', [int] $Seconds = 60)
$ErrorActionPreference = 'Stop'

Add-Type -TypeDefinition @'
using System;
using System.Runtime.InteropServices;

[ComVisible(true), ClassInterface(ClassInterfaceType.AutoDispatch)]
public class LentAccess {
  public short getsysinfo(string pbx) { return 0; }
  public string GetMPVersion(string pbx) { return "SC-1000 4.2"; }
}

[ComVisible(true), ClassInterface(ClassInterfaceType.AutoDispatch)]
public class LentHost {
  public object oPBX { get; set; }
  public object oZUL { get; set; }
  [ComVisible(false)] public bool Ended;
  [ComVisible(false)] public bool Unloaded;

  static void Tell(string line) { Console.Out.WriteLine(line); Console.Out.Flush(); }
  public void ShowMessage(string text) { Tell("ShowMessage \"" + text + "\""); }
  public void ShowCode(int code) { Tell("ShowCode " + code); }
  public void TurnOnFlow() { Tell("TurnOnFlow"); }
  public void TurnOffFlow() { Tell("TurnOffFlow"); }
  public void DisplayHelp(string file) { Tell("DisplayHelp \"" + file + "\""); }
  public string PrintReport(string database, string file, string selection, string sort1, short options, string sort2,
                            string sort3, string sort4, string sort5, string sort6) {
    Tell("PrintReport \"" + selection + "\"");
    return "This host has no printer.";
  }
  public void EndProcess(string job, short code) { Tell("EndProcess \"" + job + "\" " + code); Ended = true; }
  public void UnloadChild(short id) { Tell("UnloadChild " + id); Unloaded = true; }
  public void UnloadChild2(short id) { Tell("UnloadChild2 " + id); }
  public void EndCreateSchedule(bool cancelled) { Tell("EndCreateSchedule " + cancelled); }
  // The last argument is the answer. Empty: the window is centred.
  public void GetComData(string application, string name, ref string value) {
    Tell("GetComData \"" + application + "\" \"" + name + "\"");
    value = "";
  }
  public void REGComData(string application, string name, string value) {
    Tell("REGComData \"" + application + "\" \"" + name + "\" \"" + value + "\"");
  }
}
'@

$layer = $null
$exchangeServer = $null
$result = 2
try {
  $exchangeServer = New-Object -ComObject 'CalderinProj30001.cPBXOLE'
  $lent = New-Object LentHost
  $lent.oZUL = New-Object LentAccess
  $lent.oPBX = $exchangeServer
  $layer = New-Object -ComObject 'Vordane10013.cOLELayer'
  $failed = $layer.RegisterPBX($Exchange, $lent, [int16] 1)
  [Console]::Out.WriteLine('RegisterPBX ' + "$failed".ToLower())
  [Console]::Out.WriteLine('RunSchedule ' + $layer.RunSchedule($Key))
  $last = (Get-Date).AddSeconds($Seconds)
  while (-not ($lent.Ended -and $lent.Unloaded) -and (Get-Date) -lt $last) {
    # A wait of this kind lets calls from outside in; Start-Sleep does not.
    [void] [Threading.Thread]::CurrentThread.Join(20)
  }
  $result = if ($lent.Ended -and $lent.Unloaded) { 0 } else { 1 }
} catch {
  $failure = $_.Exception.GetBaseException()
  [Console]::Out.WriteLine(('error 0x{0:x8} {1}' -f $failure.HResult, $failure.Message))
} finally {
  # Letting go: the add-in's process ends with the last reference to its object.
  if ($layer) { [void] [Runtime.InteropServices.Marshal]::FinalReleaseComObject($layer) }
  if ($exchangeServer) { [void] [Runtime.InteropServices.Marshal]::FinalReleaseComObject($exchangeServer) }
}
[Console]::Out.WriteLine("done $result")
exit $result
