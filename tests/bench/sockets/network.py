"""A network of the benchmark's own: the loopback alone, with the congestion control that Linux has if nobody chose another.

Some machines are set up with one that paces, such as BBR. It gathers small sends instead of passing each on, so that with
many requests outstanding the figures would tell of its timer.
"""

import ctypes
import fcntl
import os
import socket
import struct

CONGESTION_CONTROL = "cubic"

CLONE_NEWUSER = 0x10000000
CLONE_NEWNET = 0x40000000
SIOCSIFFLAGS = 0x8914
IFF_UP = 0x1


def enter():
    """For this process and all that it starts. Nothing outside is changed."""
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.unshare(CLONE_NEWNET if os.geteuid() == 0 else CLONE_NEWNET | CLONE_NEWUSER) != 0:
        raise OSError(ctypes.get_errno(), os.strerror(ctypes.get_errno()))
    with socket.socket() as any_socket:
        fcntl.ioctl(any_socket, SIOCSIFFLAGS, struct.pack("16sH14x", b"lo", IFF_UP))
    with open("/proc/sys/net/ipv4/tcp_congestion_control", "w", encoding="ascii") as setting:
        setting.write(CONGESTION_CONTROL)
