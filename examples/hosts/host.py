"""A host in Python with pywin32. It lends the add-in what a host has, runs a job unattended, prints every notification,
and lets go.

  py -3 host.py [EXCHANGE [KEY [SECONDS]]]      usually PBX-1 1 60

Exit code: 0 the job's end was notified, 1 it was not, 2 an error.

Not run where the product is built, whose Python has no pywin32; on a workstation that has both the kit for Windows runs
it and compares what it prints.
"""

import sys
import time

import pythoncom
import win32com.client
from win32com.server.util import wrap


def tell(name, *values):
    print(name, *(f'"{value}"' if isinstance(value, str) else value for value in values), flush=True)


class AccessComponent:
    _public_methods_ = ["getsysinfo", "GetMPVersion"]

    def getsysinfo(self, pbx):
        return 0

    def GetMPVersion(self, pbx):
        return "SC-1000 4.2"


class Host:
    _public_attrs_ = ["oPBX", "oZUL"]
    _readonly_attrs_ = ["oPBX", "oZUL"]
    _public_methods_ = [
        "ShowMessage", "ShowCode", "TurnOnFlow", "TurnOffFlow", "DisplayHelp", "PrintReport", "EndProcess",
        "UnloadChild", "UnloadChild2", "EndCreateSchedule", "GetComData", "REGComData",
    ]

    def __init__(self, exchange_server):
        self.oPBX = exchange_server
        self.oZUL = wrap(AccessComponent())
        self.ended = False
        self.unloaded = False

    def ShowMessage(self, text):
        tell("ShowMessage", text)

    def ShowCode(self, code):
        tell("ShowCode", code)

    def TurnOnFlow(self):
        tell("TurnOnFlow")

    def TurnOffFlow(self):
        tell("TurnOffFlow")

    def DisplayHelp(self, file):
        tell("DisplayHelp", file)

    def PrintReport(self, database, file, selection, sort1, options, *sorts):
        tell("PrintReport", selection)
        return "This host has no printer."

    def EndProcess(self, job, code):
        tell("EndProcess", job, code)
        self.ended = True

    def UnloadChild(self, identifier):
        tell("UnloadChild", identifier)
        self.unloaded = True

    def UnloadChild2(self, identifier):
        tell("UnloadChild2", identifier)

    def EndCreateSchedule(self, cancelled):
        tell("EndCreateSchedule", cancelled)

    def GetComData(self, application, name, value):
        # An argument that comes by reference can't be filled from here: the window is centred each time.
        tell("GetComData", application, name)

    def REGComData(self, application, name, value):
        tell("REGComData", application, name, value)


def converse(exchange, key, seconds):
    exchange_server = win32com.client.dynamic.Dispatch("CalderinProj30001.cPBXOLE")
    host = Host(exchange_server._oleobj_)
    layer = win32com.client.dynamic.Dispatch("Vordane10013.cOLELayer")
    tell("RegisterPBX " + str(bool(layer.RegisterPBX(exchange, wrap(host), 1))).lower())
    tell("RunSchedule", layer.RunSchedule(key))
    last = time.monotonic() + seconds
    while not (host.ended and host.unloaded) and time.monotonic() < last:
        pythoncom.PumpWaitingMessages()
        time.sleep(0.02)
    # Letting go: the add-in's process ends with the last reference to its object, which goes with this function.
    host.oPBX = None
    return 0 if host.ended and host.unloaded else 1


def main(arguments):
    result = 2
    try:
        usual = ["PBX-1", "1", "60"]
        exchange, key, seconds = arguments + usual[len(arguments):]
        result = converse(exchange, key, int(seconds))
    except pythoncom.com_error as failure:
        code = failure.excepinfo[5] if failure.excepinfo else failure.hresult
        print(f"error 0x{code & 0xFFFFFFFF:08x} {failure.strerror}", flush=True)
    print("done", result, flush=True)
    return result


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
