"""What is left of a folder when the power goes: of each file what was flushed and any part of what was not; of the names
those that their folder's flush has kept, and of the later ones the first few."""

import collections
import os
import pathlib
import random
import stat

Event = collections.namedtuple("Event", "call inode offset data path other")


def read_log(log, root):
    """The events that the preloaded library has logged, with paths below the root."""
    text, at, events = log.read_bytes(), 0, []
    below = lambda path: os.path.relpath(path, root) if path else ""
    while at < len(text):
        end = text.index(b"\n", at)
        call, inode, offset, size, *rest = text[at:end].decode().replace("\t", " \t", 1).split(" ", 4)
        _, path, other = rest[0].split("\t")
        at = end + 1 + int(size)
        events.append(Event(call, int(inode), int(offset), text[end + 1:at], below(path), below(other)))
    return events


class File:
    def __init__(self, content=b"", mode=0o700, modified=None):
        self.kept, self.later, self.mode, self.modified = bytearray(content), [], mode, modified

    def change(self, offset, data):
        if data is None:
            del self.kept[offset:]
            self.kept.extend(bytes(offset - len(self.kept)))
        else:
            self.kept.extend(bytes(max(0, offset - len(self.kept))))
            self.kept[offset:offset + len(data)] = data

    def flush(self):
        for change in self.later:
            self.change(*change)
        self.later = []


class Disk:
    """A folder as it is before an operation, all of it on the medium."""

    def __init__(self, root):
        self.folders, self.begun = [], {}
        for path in pathlib.Path(root).rglob("*"):
            name, status = os.path.relpath(path, root), path.stat()
            if path.is_dir():
                self.folders.append(name)
            else:
                self.begun[name] = (status.st_ino, path.read_bytes(), stat.S_IMODE(status.st_mode), status.st_mtime)

    def leave(self, events, number, seed, place):
        """Makes the folder that a power loss behind so many events leaves. What was kept and what was seen of the lines
        until then."""
        files = {inode: File(*rest) for inode, *rest in self.begun.values()}
        names = {name: files[entry[0]] for name, entry in self.begun.items()}
        waiting, kept, seen = [], (1, 1), (1, 1)
        for event in events[:number]:
            if event.call == "mark":
                word, *steps = event.data.decode().split()
                kept, seen = (tuple(map(int, steps)) if word == which else old for which, old in (("kept", kept), ("seen", seen)))
            elif event.call == "flush" and event.inode in files:
                files[event.inode].flush()
            elif event.call == "flush":
                mine = [e for e in waiting if os.path.dirname(e[0].path) == event.path or event.path == "."]
                waiting = [e for e in waiting if e not in mine]
                self.rename(names, mine)
            elif event.call in ("write", "cut"):
                files[event.inode].later.append((event.offset, event.data if event.call == "write" else None))
            elif event.call not in ("open", "none"):
                if event.call == "create":
                    files[event.inode] = File()
                waiting.append((event, files.get(event.inode)))
        self.lose(files, names, waiting, seed)
        self.make(names, place)
        return kept, seen

    @staticmethod
    def rename(names, events):
        for event, file in events:
            if event.call == "create":
                names[event.path] = file
            elif event.call == "link" and event.path in names:
                names[event.other] = names[event.path]
            elif event.call == "rename" and event.path in names:
                names[event.other] = names.pop(event.path)
            elif event.call == "unlink":
                names.pop(event.path, None)

    def lose(self, files, names, waiting, seed):
        chance = random.Random(f"{seed} {len(waiting)}")
        few = {"least": 0, "most": len(waiting)}
        self.rename(names, waiting[:few.get(seed, chance.randint(0, len(waiting)))])
        for file in files.values():
            share = {"least": 0, "most": 1}.get(seed, chance.choice((0, 0.5, 1)))
            for change in file.later:
                if chance.random() < share:
                    file.change(*change)

    def make(self, names, place):
        for name in self.folders:
            (place / name).mkdir(parents=True, exist_ok=True)
        for name, file in names.items():
            if name.startswith("run/"):
                continue  # that folder is not on the medium
            (place / name).parent.mkdir(parents=True, exist_ok=True)
            (place / name).write_bytes(file.kept)
            (place / name).chmod(file.mode)
            if file.modified is not None:
                os.utime(place / name, (file.modified, file.modified))
