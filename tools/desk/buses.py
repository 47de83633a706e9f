"""Private message buses."""

import socket

CONFIG = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>{kind}</type><listen>unix:path={path}</listen><auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/><allow own="*"/><allow send_type="*"/><allow receive_type="*"/>
    <allow send_destination="*" eavesdrop="true"/>
  </policy>
</busconfig>
"""


def daemon(kind, path):
    """The command of a bus at that path on which everybody may do everything."""
    with open(path + ".conf", "w", encoding="ascii") as file:
        file.write(CONFIG.format(kind=kind, path=path))
    return ["dbus-daemon", f"--config-file={path}.conf", "--nofork", "--nopidfile"]


def listens(path):
    """Whether somebody listens there: a socket that exists may not be listened to yet."""
    with socket.socket(socket.AF_UNIX) as caller:
        return caller.connect_ex(path) == 0
