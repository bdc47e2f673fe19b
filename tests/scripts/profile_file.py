"""Reads a saved profile data file (the 12-line header, then the records)
and prints what the editing sessions check in it."""
import sys

EXTRA = {1: 1, 3: 3, 4: 3, 5: 6, 6: 4}


def read_profile(path):
    """The profile as a dict: kind, box, reference and the curves, each with
    its closed flag and its points as (type, x, y)."""
    lines = open(path).read().splitlines()[12:]
    tokens = " ".join(lines).replace(",", " ").split()
    pos = 0

    def take():
        nonlocal pos
        pos += 1
        return tokens[pos - 1]

    kind, _, curves = int(take()), float(take()), int(take())
    box = [float(take()) for _ in range(4)]
    ref = [float(take()) for _ in range(2)]
    result = {"kind": kind, "box": box, "ref": ref, "curves": []}
    for _ in range(curves):
        count, closed, _ = int(take()), take(), take()
        points = []
        for _ in range(count):
            take()
            kind_of_point, x, y = int(take()), float(take()), float(take())
            for _ in range(EXTRA.get(kind_of_point, 0)):
                take()
            points.append((kind_of_point, x, y))
        result["curves"].append({"closed": closed.upper().startswith("T"), "points": points})
    return result


if __name__ == "__main__":
    # profile_file.py count FILE C | point FILE C J | closed FILE C | box FILE
    # | curves FILE | same FILE1 FILE2 (exit status 0 when the data agree)
    what, path = sys.argv[1], sys.argv[2]
    profile = read_profile(path)
    if what == "count":
        print(len(profile["curves"][int(sys.argv[3]) - 1]["points"]))
    elif what == "point":
        _, x, y = profile["curves"][int(sys.argv[3]) - 1]["points"][int(sys.argv[4]) - 1]
        print(repr(x), repr(y))
    elif what == "closed":
        print("yes" if profile["curves"][int(sys.argv[3]) - 1]["closed"] else "no")
    elif what == "box":
        print(*profile["box"])
    elif what == "curves":
        print(len(profile["curves"]))
    elif what == "same":
        sys.exit(0 if profile == read_profile(sys.argv[3]) else 1)
