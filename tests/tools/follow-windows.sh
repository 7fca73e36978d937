#!/bin/bash
# follow.py with the Windows program. Arguments: the program, the repository. Ends with 77 where there is no Python or no
# validator (the newer Wine's root).
python3 -c 'import jsonschema' 2> /dev/null || exit 77
# A network of this test's own has nothing up, its own address included.
python3 - <<'PYTHON' || exit 77
import fcntl, socket, struct
with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:
    UP, SIOCSIFFLAGS = 1, 0x8914
    fcntl.ioctl(any_socket, SIOCSIFFLAGS, struct.pack("16sh14x", b"lo", UP))
PYTHON
export VORDANE_FOLLOW_KILLS=${VORDANE_FOLLOW_KILLS:-8}
exec python3 "$(dirname "$0")/follow.py" "$@"
