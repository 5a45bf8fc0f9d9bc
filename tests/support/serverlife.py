"""How the test servers end: with the process that started them, even if it dies.

The starter keeps the server's standard input an open pipe; when that closes, the server exits.
"""

import os
import stat
import sys
import threading


def _stdin_is_pipe():
    try:
        mode = os.fstat(sys.stdin.fileno()).st_mode
    except (OSError, ValueError, AttributeError):
        return False
    return stat.S_ISFIFO(mode) or stat.S_ISSOCK(mode)


def _exit_when_stdin_closes():
    try:
        while os.read(sys.stdin.fileno(), 4096):
            pass
    except OSError:
        pass
    os._exit(0)


def exit_with_starter():
    """Exits this process once standard input, if it is a pipe, reaches its end."""
    if _stdin_is_pipe():
        threading.Thread(target=_exit_when_stdin_closes, daemon=True).start()
