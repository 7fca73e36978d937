// A caller of the simulated exchange in a process of its own: logs in, sends a record, reads the answer that
// CallBack brings, logs out. Prints one line for each step; server.sh compares them.
function say(text) { WScript.Echo(text); }

var heard = 0;
var caller = {
  CallBack: function (record) {
    ++heard;
    say("CallBack Tag=" + record.Tag + " LoginID=" + record.LoginID + " ErrCode=" + record.ErrCode + " Count=" +
        record.Count + " Message=" + record.Message);
    say("first=" + record.FirstData(0) + " date=" + record.FirstData(1) + " CMD=" + record.CMD(0) + " beyond=[" +
        record.FirstData(99) + "]");
    record.Message = "seen";
    say("Message=" + record.Message);
  }
};

// What the exchange reads of a record. Members that are plain values can't be read as methods here, which is
// how a late-bound reader asks; functions can.
function request(id, first, second) {
  return {
    LoginID: function () { return id; },
    Tag: function () { return "10"; },
    CMD: function (index) { return "LEA0"; },
    FirstData: function (index) { return first; },
    SecondData: function (index) { return second; }
  };
}

// Answers come while a call on the server's process is under way.
function waitFor(server, count) {
  var end = new Date().getTime() + 20000;
  while (heard < count && new Date().getTime() < end) {
    try { server.LogOut("PBX-1", "nobody"); } catch (ignored) { }
  }
}

try {
  var server = new ActiveXObject("CalderinProj30001.cPBXOLE");
  say("Login=" + server.Login("PBX-1", caller));
  var id = server.Login("PBX-1", caller);
  say("Login=" + id);
  say("SendRequest=" + server.SendRequest(request("nobody", "", "")));
  say("SendRequest=" + server.SendRequest(request(id, "", "")));
  waitFor(server, 1);
  server.LogOut("PBX-1", id);
  try {
    server.Login("BROKEN", caller);
  } catch (failure) {
    say("raised " + (failure.number >>> 0).toString(16) + " " + failure.message);
  }
  say("unknown=" + server.Login("NOBODY", caller));
} catch (failure) {
  say("error " + (failure.number >>> 0).toString(16) + " " + failure.message);
}
say("end");
