// A host in C#. It lends the add-in what a host has, runs a job unattended, prints every notification, and lets go.
//
//   csc /nologo /platform:x64 /r:Microsoft.CSharp.dll /r:System.Core.dll host.cs
//   host [EXCHANGE [KEY [SECONDS]]]      usually PBX-1 1 60
//
// Exit code: 0 the job's end was notified, 1 it was not, 2 an error.
//
// It calls late-bound ("dynamic"). With a reference to the library (tlbimp VORDANE.EXE, or "Add reference, COM") the same
// calls are bound early. Not run where the product is built, which has no .NET; on a workstation the kit for Windows
// compiles it with the compiler of the .NET Framework, runs it and compares what it prints.
using System;
using System.Runtime.InteropServices;
using System.Threading;

[ComVisible(true), ClassInterface(ClassInterfaceType.AutoDispatch)]
public class AccessComponent {
  public short getsysinfo(string pbx) { return 0; }
  public string GetMPVersion(string pbx) { return "SC-1000 4.2"; }
}

[ComVisible(true), ClassInterface(ClassInterfaceType.AutoDispatch)]
public class Host {
  public object oPBX { get; set; }
  public object oZUL { get; set; }
  [ComVisible(false)] public bool Ended { get; private set; }
  [ComVisible(false)] public bool Unloaded { get; private set; }

  static void Tell(string line) { Console.WriteLine(line); }
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

public static class Program {
  static object Create(string progId) { return Activator.CreateInstance(Type.GetTypeFromProgID(progId, true)); }

  static int Converse(string exchange, string key, int seconds) {
    dynamic layer = null;
    object exchangeServer = null;
    try {
      exchangeServer = Create("CalderinProj30001.cPBXOLE");
      var host = new Host { oPBX = exchangeServer, oZUL = new AccessComponent() };
      layer = Create("Vordane10013.cOLELayer");
      bool failed = layer.RegisterPBX(exchange, host, (short) 1);
      Console.WriteLine("RegisterPBX " + failed.ToString().ToLowerInvariant());
      short started = layer.RunSchedule(key);
      Console.WriteLine("RunSchedule " + started);
      DateTime last = DateTime.UtcNow.AddSeconds(seconds);
      while (!(host.Ended && host.Unloaded) && DateTime.UtcNow < last)
        Thread.CurrentThread.Join(20);  // lets calls from outside in, which Thread.Sleep does not
      return host.Ended && host.Unloaded ? 0 : 1;
    } finally {
      // Letting go: the add-in's process ends with the last reference to its object.
      if (layer != null) Marshal.FinalReleaseComObject(layer);
      if (exchangeServer != null) Marshal.FinalReleaseComObject(exchangeServer);
    }
  }

  [STAThread]
  public static int Main(string[] arguments) {
    int result = 2;
    try {
      result = Converse(arguments.Length > 0 ? arguments[0] : "PBX-1", arguments.Length > 1 ? arguments[1] : "1",
                        arguments.Length > 2 ? int.Parse(arguments[2]) : 60);
    } catch (Exception failure) {
      Console.WriteLine("error 0x{0:x8} {1}", Marshal.GetHRForException(failure), failure.Message);
    }
    Console.WriteLine("done " + result);
    return result;
  }
}
