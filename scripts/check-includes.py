#!/usr/bin/env python3
"""Usage: check-includes.py   checks which folder includes what, and that only wrappers close things

Reports, by line:
- an include from one folder of the project into another that is not among kArrows;
- a header of Windows, of POSIX or of a library outside the folders that own it;
- a raw call that gives something back to the system outside the wrappers that own such things.
"""
import re
import sys
from pathlib import Path

kProgram = ("app", "inventor", "export", "zip", "database", "ui", "platform")

# Which folder may include which others; its own headers are always allowed.
kArrows = {
    "app": {"inventor", "export", "ui", "platform"},
    "export": {"inventor", "zip", "database", "ui", "platform"},
    "ui": {"database", "platform"},
    "inventor": {"platform"},
    "zip": {"platform"},
    "database": {"platform"},
    "platform": set(),
    "headless": {"platform", "ui"},
    "simulator": {"platform"},
    "tests": {*kProgram, "resources", "headless", "simulator"},
    "benchmarks": {*kProgram, "resources", "headless", "simulator"},
    "scripts": {"platform", "tests"},
}
# What single files may include beyond that: (file, header).
kExceptions = [
    (r"export/\w+\.cpp", r"app/MainDlg\.h"),  # the dialog reads the run's settings through the main form
    (r"(export|ui)/.*", r"resources/Icons\.h"),
]
# Who may include the headers of a folder that has less to do with the rest than its parent.
kInner = {
    "platform/windows/": r"(platform|ui)/windows/|simulator/com/|tests/|benchmarks/|scripts/demo/",
    "ui/windows/": r"ui/windows/|tests/|benchmarks/",
    "simulator/com/": r"simulator/com/|tests/|benchmarks/",
}
# Who may include <...> headers that are not the standard library's.
kForeign = {
    r"nlohmann/.*": r"(simulator|tests|benchmarks)/",
    r"sqlite3\.h": r"(database|tests|benchmarks)/",
    r"zlib\.h": r"(zip|tests|benchmarks)/",
    r"g(test|mock)/.*": r"tests/",
    r"\w*intrin\.h": r"zip/",  # the processor's instructions
    r"benchmark/.*": r"benchmarks/",
    r"(sys|netinet)/.*|(dirent|fcntl|malloc|poll|signal|spawn|unistd)\.h": r"(headless|tests|benchmarks|scripts)/",
    r".*\.h": r"(platform|ui|benchmarks)/windows/|simulator/com/|tests/e2e/|scripts/demo/",  # Windows
}
# Each of these makes the Windows executable close to a megabyte bigger.
kHeavy = r"filesystem|(f|i|o|s)?s?tream|iomanip|iostream|regex|sstream"

kOwnedCalls = re.compile(r"(?:->|\.|::|\breturn |\) |^ *)(Release|CloseHandle|VariantClear|SysFreeString)\(")
kOwners = r"platform/(Handle\.h|windows/(\w*Handles?\.h|(Dispatch|Variant)\w*\.(h|cpp)))"


def Judge(file, header, isOurs):
    """What speaks against the include, or None."""
    if isOurs:
        for inner, users in kInner.items():
            if header.startswith(inner):
                return None if re.match(users, file) else f"the headers of {inner} are for {users} alone"
        folder, target = file.split("/")[0], header.split("/")[0]
        allowed = target == folder or target in kArrows[folder] or any(
            re.fullmatch(f, file) and re.fullmatch(h, header) for f, h in kExceptions)
        return None if allowed else f"{folder}/ must not use {target}/"
    for pattern, users in kForeign.items():
        if re.fullmatch(pattern, header):
            return None if re.match(users, file) else f"only for {users}"
    if file.split("/")[0] in kProgram and re.fullmatch(kHeavy, header):
        return "too heavy for the program: it makes the executable nearly a megabyte bigger"
    return None


def Findings(root):
    for folder in kArrows:
        for path in sorted([*(root / folder).rglob("*.h"), *(root / folder).rglob("*.cpp")]):
            file = path.relative_to(root).as_posix()
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                code = line.split("//")[0]
                if include := re.match(r'\s*#\s*include\s*(["<])(.*)[">]', code):
                    ours = include[1] == '"'
                    problem = Judge(file, include[2], ours)
                    if ours and not (root / include[2]).is_file():
                        problem = "no such file below the project's root"
                elif re.match(r"\s*#\s*include", code):
                    problem = "neither \"header\" nor <header>"
                else:
                    call = kOwnedCalls.search(code)
                    problem = call and not re.fullmatch(kOwners, file) and f"{call[1]}() is for the owning wrappers"
                if problem:
                    yield f"{file}:{number}: {problem}"


if __name__ == "__main__":
    if sys.argv[1:]:
        sys.exit(__doc__.splitlines()[0])
    findings = list(Findings(Path(__file__).resolve().parent.parent))
    print("\n".join([*findings, f"check-includes.py: {len(findings)} findings"]))
    sys.exit(bool(findings))
