#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Types many entries at the prompt, one after the other, and looks at the memory of the program.

    soak.py PROGRAM ENTRIES [editor]

Without the editor of lines, or with it. Prints the resident memory after each tenth. Ends with 1 when it has grown
by more than 2 MB behind the first one (or behind 30,000 entries, when the history is as long as it gets).
"""
import os
import select
import sys
import threading

from faults import Person, Prompt

ENTRIES = [
    "{n}*3+sqrt({n})", "a{m}={n}", "a{m}*2", "f{m}(x)=x^{m}+{n}", "f{m}(12)", "{m} km->mi", "sin({n})^2+cos({n})^2",
    "{n}*(", "unknown{m}+1", "0x{m}F & 0b1010", "del a{m}", "fixed on; {n}/7", "fixed off", "list{m}", "{m}!; 2^{m}",
]
MOST_GROWTH = 2048  # KiB


def memory(process):
    with open(f"/proc/{process}/status", encoding="ascii") as file:
        return next(int(line.split()[1]) for line in file if line.startswith("VmRSS"))


def main():
    program, count = os.path.abspath(sys.argv[1]), int(sys.argv[2])
    person = Person()
    person.has_editor = sys.argv[3:] == ["editor"]
    prompt = Prompt(program, person)
    terminal = prompt.terminal
    seen = 0  # prompts

    def read_until(wanted):
        nonlocal seen
        rest = b""
        while seen < wanted:
            if not select.select([terminal], [], [], 60)[0]:
                sys.exit("soak: no prompt for a minute")
            rest += os.read(terminal, 65536)
            seen += rest.count(b"\n> ")
            rest = rest[-2:]

    figures = []
    block = 100
    for start in range(0, count, block):
        text = "".join(ENTRIES[i % len(ENTRIES)].format(n=i, m=i % 90) + "\n" for i in range(start, start + block))
        writer = threading.Thread(target=lambda text=text: [os.write(terminal, line.encode() + b"\n") for line in text.splitlines()])
        writer.start()
        read_until(start + block)
        writer.join()
        done = start + block
        if done % max(block, count // 10) == 0:
            figures.append((done, memory(prompt.child)))
            print(f"{done:>9} entries: {figures[-1][1]} KiB", flush=True)
    prompt.end(15)
    settled = next((kib for done, kib in figures if done >= 30000), figures[0][1])
    grown = figures[-1][1] - settled
    print(f"grown by {grown} KiB")
    person.remove()
    return 1 if grown > MOST_GROWTH else 0


if __name__ == "__main__":
    sys.exit(main())
