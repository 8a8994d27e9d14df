"""pictures.py MPD_PLAYER [NAME...]: the current song's picture, embedded or beside it, in all formats."""
import base64
import struct
import subprocess
import sys

sys.path.insert(0, __file__.rpartition("/players/")[0])
from players_test import PICTURE, Device, FalseMpd, jpeg, piece, png, run

# 40 x 20 pixels of one colour, as all pictures here.
WEBP = base64.b64decode("UklGRh4AAABXRUJQVlA4TBEAAAAvJ8AEAAdQwP4Xov+BiOh/AAA=")
CMYK = base64.b64decode(
    "/9j/7gAOQWRvYmUAZAAAAAAA/9sAQwAQCwwODAoQDg0OEhEQExgoGhgWFhgxIyUdKDozPTw5Mzg3QEhcTkBEV0U3OFBtUVdfYmdoZz5NcXlwZHhcZWdj"
    "/8AAFAgAFAAoBEMRAE0RAFkRAEsRAP/EABYAAQEBAAAAAAAAAAAAAAAAAAAHBv/EABQQAQAAAAAAAAAAAAAAAAAAAAD/2gAOBEMATQBZAEsAAD8AoAw6"
    "gAAAAAAAAAAAAAAAAAAA/9k=")


def tiff(order):
    tags = ((256, 40), (257, 20), (258, 8), (259, 1), (262, 2), (273, 8), (277, 3), (278, 20), (279, 2400))
    pixels = b"\xff\x80\x10" * 800
    entries = b"".join(struct.pack(order + "HHII", tag, 4, 1, value) for tag, value in tags)
    return (b"II*\0" if order == "<" else b"MM\0*") + struct.pack(order + "I", 8 + len(pixels)) + pixels + struct.pack(
        order + "H", len(tags)) + entries + bytes(4)


def turned(file, orientation):
    exif = b"Exif\0\0II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0" + bytes([orientation, 0, 0, 0, 0, 0, 0, 0])
    return file[:2] + b"\xff\xe1" + struct.pack(">H", len(exif) + 2) + exif + file[2:]


def kinds(_):
    """What the song and its folder have, and what is sent: the size, and the pixels of one colour or the file as it is."""
    plain, grey = jpeg(40, 20), subprocess.run(["cjpeg", "-grayscale"], input=b"P6 40 20 255\n" + bytes(2400), stdout=subprocess.PIPE, check=True).stdout
    big, icon, upright = png(40, 20), png(32, 32), turned(plain, 1)
    for case, embedded, folder, kind, size, same in (
            ("WebP", WEBP, None, "rgb888", ("40", "20"), None), ("TIFF", tiff("<"), None, "rgb888", ("40", "20"), None),
            ("big-endian TIFF", tiff(">"), None, "rgb888", ("40", "20"), None), ("CMYK", CMYK, None, "rgb888", ("40", "20"), None),
            ("CMYK as JPEG", CMYK, None, "jpeg", ("40", "20"), None), ("JPEG", plain, None, "jpeg", ("40", "20"), plain),
            ("grey", grey, None, "jpeg", ("40", "20"), grey), ("upright", upright, None, "jpeg", ("40", "20"), upright),
            ("turned", turned(plain, 6), None, "jpeg", ("20", "40"), None), ("turned pixels", turned(plain, 6), None, "rgb888", ("20", "40"), None),
            ("turned half", turned(plain, 3), None, "jpeg", ("40", "20"), None),
            ("an icon", icon, big, "rgb888", ("40", "20"), None), ("only an icon", icon, None, "rgb888", ("32", "32"), None),
            ("an icon and what is no picture", icon, b"none", "rgb888", ("32", "32"), None),
            ("no picture", b"none", big, "rgb888", ("40", "20"), None), ("a cut picture", png(90, 90)[:40], WEBP, "rgb888", ("40", "20"), None),
            ("too large a picture", None, big, "rgb888", ("40", "20"), None)):
        first = [piece(embedded)] if embedded else [piece(PICTURE, size=1 << 40)]
        second = [piece(folder) if folder else b"ACK [50@0] {albumart} none\n"]
        with FalseMpd(readpicture=first, albumart=second) as mpd, Device(*mpd.where, "--art", kind) as d:
            found = d.next("NEW_COVERART", "COVERART_PATH_CHANGED")
            data = base64.b64decode(found[1])
            assert tuple(found[2:4]) == size and (data == (same or data)) and (same or data != embedded), (case, found[2:])
            colours = [abs(a - b) for a, b in zip(data, b"\x10\x80\xff\xff")] if kind == "rgb888" else [0]
            assert max(colours) < 4 and data[:2] == (data[:2] if kind != "jpeg" else b"\xff\xd8"), (case, data[:4])
            assert kind != "jpeg" or same or b"Exif" not in data, case


def pictures(mpd):
    for kind, uri, *expected in (("jpeg", mpd.A, "96", "64", "JPEG"), ("jpeg", mpd.B, "200", "100", "JPEG"),
                                 ("jpeg", mpd.C, "200", "100", "JPEG"), ("rgb565", mpd.C, "200", "100", "RGB565"),
                                 ("rgb888", mpd.A, "96", "64", "RGB888"), ("rgb888", mpd.C, "200", "100", "RGB888")):
        with Device("--host", mpd.host, "--art", kind, "--art-size", "200") as d:
            d.say("PLAY", ID=uri)
            while (found := d.next("NEW_COVERART"))[2:5] != expected:
                pass
            data = base64.b64decode(found[1])
            width, height = map(int, expected[:2])
            if kind == "jpeg":
                assert len(data) == int(found[5]) and data[:2] == b"\xff\xd8", found[2:]
                assert (data == jpeg(96, 64)) == (uri == mpd.A)
            elif uri == mpd.C:
                one = {"rgb565": b"\x02\xfc", "rgb888": b"\x10\x80\xff\xff"}[kind]
                assert data == one * width * height, data[:8]
            if uri == mpd.C:
                d.say("PLAY", ID=mpd.E)
                d.wait("MEDIA_INFO_CHANGED", "E.flac", "", "")
                told = [d.list("BROWSE", ID="albums") and d.seen.count([*found[:1], *[v[:60] for v in found[1:]]]) for _ in "ab"]
                assert told == [1, 1], "the same picture is sent twice"
                mpd.mpc("del", "5")
            d.say("PLAY", ID=mpd.D)
            assert d.next("NEW_COVERART", "COVERART_PATH_CHANGED") == ["COVERART_PATH_CHANGED", "", "0", "0"]
    mpd.mpc("stop")


if __name__ == "__main__":
    run(pictures)
    run(kinds, real=False)
