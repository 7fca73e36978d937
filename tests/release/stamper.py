#!/usr/bin/env python3
"""A time stamp server on this machine alone: stamper.py, in a folder with openssl's settings for it (`stamps`).

Prints the number of its port once it listens, and answers each request (RFC 3161) with what openssl makes of it, until it
is ended.
"""
import http.server
import subprocess
import tempfile


class Stamper(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        asked = self.rfile.read(int(self.headers["Content-Length"]))
        with tempfile.NamedTemporaryFile() as query:
            query.write(asked)
            query.flush()
            answer = subprocess.run(["openssl", "ts", "-reply", "-config", "stamps", "-queryfile", query.name],
                                    check=True, capture_output=True).stdout
        self.send_response(200)
        self.send_header("Content-Type", "application/timestamp-reply")
        self.send_header("Content-Length", str(len(answer)))
        self.end_headers()
        self.wfile.write(answer)

    def log_message(self, *what):
        pass


server = http.server.HTTPServer(("127.0.0.1", 0), Stamper)
print(server.server_port, flush=True)
server.serve_forever()
