# Stands between X clients and the display in $DISPLAY. It hides extensions from them (shared memory
# always, because the connection works like one over a network), and takes the display away when it
# is ended.
#   x_filter.py FILE EXTENSION...
# Writes the name of the display to be used instead into FILE.
import os
import socket
import struct
import sys
import threading

record, hidden = sys.argv[1], [b"MIT-SHM"] + [name.encode() for name in sys.argv[2:]]
number = os.environ["DISPLAY"].split(":")[1].split(".")[0]
query_extension = 98


def take(connection, count):
    data = b""
    while len(data) < count:
        part = connection.recv(count - len(data))
        if not part:
            raise EOFError
        data += part
    return data


def padded(count):
    return (count + 3) // 4 * 4


def changed(request):
    length = struct.unpack_from("<H", request, 4)[0]
    name = request[8:8 + length]
    if name in hidden:
        return request[:8] + b"-" * length + request[8 + length:]
    return request


def requests(client, server):
    try:
        head = take(client, 12)
        name, data = struct.unpack_from("<HH", head, 6)
        server.sendall(head + take(client, padded(name) + padded(data)))
        while True:
            request = take(client, 4)
            words = struct.unpack_from("<H", request, 2)[0]
            if words == 0:  # a big request
                request += take(client, 4)
                words = struct.unpack_from("<I", request, 4)[0]
            request += take(client, words * 4 - len(request))
            if request[0] == query_extension:
                request = changed(request)
            server.sendall(request)
    except (EOFError, OSError):
        server.close()


def answers(server, client):
    try:
        while True:
            data = server.recv(65536)
            if not data:
                raise EOFError
            client.sendall(data)
    except (EOFError, OSError):
        client.close()


listener = socket.socket()
for display in range(300, 400):
    try:
        listener.bind(("127.0.0.1", 6000 + display))
        break
    except OSError:
        continue
listener.listen()
with open(record + ".new", "w") as file:
    file.write("127.0.0.1:%d" % display)
os.rename(record + ".new", record)
while True:
    client, _ = listener.accept()
    client.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
    server = socket.socket(socket.AF_UNIX)
    server.connect("/tmp/.X11-unix/X" + number)
    threading.Thread(target=requests, args=(client, server), daemon=True).start()
    threading.Thread(target=answers, args=(server, client), daemon=True).start()
