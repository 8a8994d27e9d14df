"""example.py EXAMPLE: the player to copy."""
import sys

sys.path.insert(0, __file__.rpartition("/players/")[0])
from players_test import Device, run


def example(_):
    with Device() as d:
        d.wait("PLAY_TIME_CHANGED", "0:00", "0:21")
        for command, *expected in (("PLAY", "PLAY_TIME_CHANGED", "0:01", "0:20"), ("PAUSE", "PLAY_STATUS_CHANGED", "Paused"),
                                   ("SKIP_FWD", "QUEUE_PROGRESS_CHANGED", "2", "3")):
            d.say(command, ROOM_ID="5")
            d.wait(*expected)


if __name__ == "__main__":
    run(example, real=False)
