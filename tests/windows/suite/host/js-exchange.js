// A host that is its own exchange server, all of it plain script: the records it answers with are objects with
// plain values, no classes.
var ended = false, unloaded = false, caller = null, answers = [], messages = [], logins = 0,
    flowing = false;  // the host has heard that the request was accepted

function tell(line) { WScript.Echo(line); }

function record(request, entries) {
  return {
    ErrCode: 0, Tag: request.Tag, LoginID: request.LoginID, Message: "", Count: entries.length,
    CMD: function (i) { return "LEA0"; },
    FirstData: function (i) { return entries[i][0]; },
    SecondData: function (i) { return entries[i][1]; },
    ExtraData: function (i) { return entries[i][2]; }
  };
}

var faults = [["11 MJ LP 0C", "", ""], ["06/11/27 10:15", "", ""], ["02 00 00", "", ""], ["00", "", ""]];
var exchange = {
  Login: function (name, window) { caller = window; tell("Login " + name); return "L" + ++logins; },
  SendRequest: function (request) {
    tell("SendRequest " + request.CMD(0) + " tag " + request.Tag + " for " + request.PBXName);
    answers.push(record(request, request.Tag === "10" ? faults : [["00", "10", "OK"]]));
    return "TAKEN";
  },
  LogOut: function (name, id) { tell("LogOut " + name + " " + id); },
  CancelRequest: function (name, id) { tell("CancelRequest"); }
};

var host = {
  oPBX: exchange,
  oZUL: { getsysinfo: function (name) { return "2"; }, GetMPVersion: function (name) { return "SC-1000 M"; } },
  ShowMessage: function (text) { tell("ShowMessage " + text); },
  ShowCode: function (code) { tell("ShowCode " + code); },
  TurnOnFlow: function () { tell("TurnOnFlow"); flowing = true; },
  TurnOffFlow: function () { tell("TurnOffFlow"); flowing = false; },
  EndProcess: function (job, code) { tell("EndProcess " + job + " " + code); ended = true; },
  UnloadChild: function (id) { tell("UnloadChild " + id); unloaded = true; },
  REGComData: function (application, name, value) { tell("REGComData " + name); },
  GetComData: function (application, name, value) { tell("GetComData " + name); }
};

var result = 1;
try {
  var layer = new ActiveXObject("Vordane10013.cOLELayer");
  tell("RegisterPBX " + layer.RegisterPBX("SCRIPT", host, 7));
  tell("RunSchedule " + layer.RunSchedule("1"));
  var end = new Date().getTime() + 60000;
  while (!(ended && unloaded) && new Date().getTime() < end) {
    var visible = layer.Visible;
    if (flowing && answers.length > 0) {
      var answer = answers.shift();
      caller.CallBack(answer);
      messages.push(answer.Message);
    }
  }
  tell("filled in: " + messages.join(", "));
  result = ended && unloaded ? 0 : 1;
} catch (failure) {
  tell("error 0x" + (failure.number >>> 0).toString(16) + " " + failure.message);
}
layer = null;
caller = null;
CollectGarbage();
tell("done " + result);
WScript.Quit(result);
