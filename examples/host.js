// A host written as a script. It lends the add-in what a host has, shows its window or runs a job
// unattended, prints every notification, and lets go.
//
//   cscript //nologo host.js [EXCHANGE [KEY [SECONDS]]]
//
// EXCHANGE (PBX-1): the exchange to register. KEY: with it, job KEY is run unattended; without it (or with
// "-") the window stands open until it is closed or SECONDS (60) are over.
//
// Exit code: 0 the notification that was waited for came (or the window's time was over), 1 it did not,
// 2 an error.

var exchange = argument(0, "PBX-1");
var key = argument(1, "-");
var seconds = Number(argument(2, "60"));
var unattended = key !== "-";

var ended = false;
var unloaded = false;
var common = {};

function argument(index, usual) {
  return WScript.Arguments.length > index ? String(WScript.Arguments.Item(index)) : usual;
}

function tell(name, values) {
  var line = name;
  for (var i = 0; i < values.length; ++i) line += " " + (typeof values[i] === "string" ? '"' + values[i] + '"' : values[i]);
  WScript.Echo(line);
}

// The access component: capability bits and the main processor's version.
var access = {
  getsysinfo: function (pbx) { return 0; },
  GetMPVersion: function (pbx) { return "SC-1000 4.2"; }
};

var host = {
  oPBX: null,
  oZUL: access,
  ShowMessage: function (text) { tell("ShowMessage", [text]); },
  ShowCode: function (code) { tell("ShowCode", [code]); },
  TurnOnFlow: function () { tell("TurnOnFlow", []); },
  TurnOffFlow: function () { tell("TurnOffFlow", []); },
  DisplayHelp: function (file) { tell("DisplayHelp", [file]); },
  PrintReport: function (database, file, selection, sort1, option, sort2, sort3, sort4, sort5, sort6) {
    tell("PrintReport", [database, file, selection, sort1, option, sort2, sort3, sort4, sort5, sort6]);
    return "This host has no printer.";
  },
  UnloadChild: function (id) { tell("UnloadChild", [id]); unloaded = true; },
  UnloadChild2: function (id) { tell("UnloadChild2", [id]); },
  EndCreateSchedule: function (cancelled) { tell("EndCreateSchedule", [cancelled]); },
  EndProcess: function (job, code) { tell("EndProcess", [job, code]); ended = true; },
  REGComData: function (application, name, value) { tell("REGComData", [application, name, value]); common[name] = value; },
  // A script can't fill a by-reference argument, so the window is centred each time.
  GetComData: function (application, name, value) { tell("GetComData", [application, name]); }
};

// Not every script engine can sleep, and a sleeping script hears nothing: calls on another process let the
// add-in's notifications in meanwhile.
function waitUntil(done, limit) {
  var end = new Date().getTime() + 1000 * limit;
  while (!done() && new Date().getTime() < end) {
    var visible = layer.Visible;
    try { WScript.Sleep(20); } catch (noSleep) { }
  }
  return done();
}

var layer = null;
var result = 2;
try {
  host.oPBX = new ActiveXObject("CalderinProj30001.cPBXOLE");
  layer = new ActiveXObject("Vordane10013.cOLELayer");
  tell("RegisterPBX", [layer.RegisterPBX(exchange, host, 1)]);
  if (unattended) {
    tell("RunSchedule", [layer.RunSchedule(key)]);
    result = waitUntil(function () { return ended && unloaded; }, seconds) ? 0 : 1;
  } else {
    layer.Visible = true;
    waitUntil(function () { return unloaded; }, seconds);
    result = 0;
  }
} catch (failure) {
  WScript.Echo("error 0x" + (failure.number >>> 0).toString(16) + " " + failure.message);
}

// Letting go: the add-in's process ends with the last reference to its object.
layer = null;
host.oPBX = null;
CollectGarbage();
WScript.Echo("done " + result);
WScript.Quit(result);
