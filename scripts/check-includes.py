#!/usr/bin/env python3
"""Usage: check-includes.py [--self-test]   checks which folder includes what, and that only wrappers close things

Reads the C++ sources and reports
- an include between two folders that is not among the arrows below;
- a back end's header, a header of Windows or POSIX, or a library's header outside the folders that own it;
- a raw call that gives something back to the system (kOwnedCalls) outside the wrappers that own such things.
"""
import re
import sys
import tempfile
from pathlib import Path

kFolders = ("app", "inventor", "export", "database", "ui", "platform", "simulator", "tests", "benchmarks")

# Which folder may include which others; its own headers are always allowed.
kArrows = {
    "app": {"inventor", "export", "ui", "platform"},
    "export": {"inventor", "database", "ui", "platform"},
    "ui": {"database", "platform"},
    "inventor": {"platform"},
    "database": {"platform"},
    "simulator": {"platform"},
    "platform": set(),
    "tests": set(kFolders) - {"benchmarks"},
    "benchmarks": set(kFolders) - {"tests"},
}
# Single files: the dialog's sources read the run's settings through the main form.
kExtraIncludes = [(re.compile(r"export/[^/]+\.cpp"), "app/MainDlg.h")]
# The identifiers of the icons: for those who load them, and for those who name one.
kResourceUsers = ("export/", "ui/windows/")

kWindowsFolders = ("platform/windows/", "ui/windows/", "simulator/com/", "tests/e2e/", "benchmarks/windows/")
kHeadlessFolders = ("platform/headless/", "ui/headless/")
kMeasuringFolders = ("tests/", "benchmarks/")

# Who may include the headers of a back end. The COM shell of the simulator shares the owning wrappers and the one
# helper that turns our characters into the system's.
kBackEndUsers = {
    "windows": ("platform/windows/", "ui/windows/") + kMeasuringFolders,
    "headless": kHeadlessFolders + kMeasuringFolders,
}
kSharedWithComShell = tuple(f"platform/windows/{name}.h" for name in
                            ("LastError", "SystemHandles", "VariantConversion", "Wide"))

kLibraries = {
    "nlohmann/": ("simulator/",) + kMeasuringFolders,
    "sqlite3.h": ("database/",) + kMeasuringFolders,
    "zlib.h": ("export/",) + kMeasuringFolders,
    "gtest/": ("tests/",),
    "gmock/": ("tests/",),
    "benchmark/": ("benchmarks/",),
}

kStandardHeaders = set("""
    algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes
    climits clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg
    cstddef cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution expected filesystem
    format forward_list fstream functional future initializer_list iomanip ios iosfwd iostream istream iterator
    latch limits list locale map memory memory_resource mutex new numbers numeric optional ostream queue random
    ranges ratio regex scoped_allocator semaphore set shared_mutex source_location span sstream stack stdexcept
    stop_token streambuf string string_view syncstream system_error thread tuple type_traits typeindex typeinfo
    unordered_map unordered_set utility valarray variant vector version""".split())

# Each of these makes the Windows executable close to a megabyte bigger.
kHeavyHeaders = {"filesystem", "fstream", "iomanip", "iostream", "istream", "ostream", "regex", "sstream"}
kProgramFolders = ("app/", "inventor/", "export/", "database/", "ui/", "platform/")

kPosixHeader = re.compile(r"(sys|arpa|netinet)/.*|(dirent|dlfcn|fcntl|malloc|poll|pwd|signal|spawn|unistd)\.h")

kOwnedCalls = re.compile(r"\b(Release|CloseHandle|VariantClear|SysFreeString)\s*\(")
kOwners = re.compile(r"platform/windows/((System)?Handles?\.h|(Dispatch|Variant)\w*\.(h|cpp)|Bstr\w*\.h)")

kInclude = re.compile(r"^[ \t]*#[ \t]*include\b[ \t]*(.*)$", re.MULTILINE)
# Comments, texts and characters, raw texts included; a line's number must survive their removal.
kSkipped = re.compile(
    r'R"([^()\\ ]*)\(.*?\)\1"|//(?:\\\n|[^\n])*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])\'(?:\\.|[^\'\\\n])*\'',
    re.DOTALL)


def Blank(match):
    return " " + "\n" * match.group().count("\n")


def WithoutComments(text):
    """Texts stay, as an include line has one."""
    return kSkipped.sub(lambda m: Blank(m) if m.group().startswith("/") else m.group(), text)


def JudgeProjectHeader(file, header, root):
    folder, target = file.split("/")[0], header.split("/")[0]
    if not (root / header).is_file():
        return "there is no such file (paths begin at the project's root)"
    backEnd = next((name for name in kBackEndUsers if f"/{name}/" in header), None)
    if backEnd and not file.startswith(kBackEndUsers[backEnd]):
        if not (file.startswith("simulator/com/") and header in kSharedWithComShell):
            return f"headers of the {backEnd} back end are for the back end and the tests alone"
    if header.startswith("simulator/com/") and not file.startswith(("simulator/com/",) + kMeasuringFolders):
        return "only the COM shell uses its headers"
    if target == folder or target in kArrows[folder]:
        return None
    if target == "resources" and file.startswith(kResourceUsers + kMeasuringFolders):
        return None
    if any(pattern.fullmatch(file) and header == extra for pattern, extra in kExtraIncludes):
        return None
    return f"{folder}/ must not use {target}/"


def JudgeForeignHeader(file, header):
    for library, users in kLibraries.items():
        if header.startswith(library):
            return None if file.startswith(users) else f"a library of {', '.join(users)} alone"
    if header in kStandardHeaders:
        if header in kHeavyHeaders and file.startswith(kProgramFolders) and not file.startswith(kHeadlessFolders):
            return "too heavy for the program: it makes the executable nearly a megabyte bigger"
        return None
    if file.startswith(kWindowsFolders):
        return None
    if kPosixHeader.fullmatch(header) and file.startswith(kHeadlessFolders + kMeasuringFolders):
        return None
    return f"a header of a system, allowed below {', '.join(kWindowsFolders)} alone"


def CheckIncludes(file, text, root):
    text = WithoutComments(text)
    for match in kInclude.finditer(text):
        line = text.count("\n", 0, match.start()) + 1
        name = re.fullmatch(r'(["<])([^">]+)[">]\s*', match.group(1))
        if not name:
            yield line, f"#include {match.group(1)}: neither \"header\" nor <header>"
            continue
        header = name.group(2)
        ours = name.group(1) == '"' or (header.split("/")[0] in kFolders and (root / header).is_file())
        verdict = JudgeProjectHeader(file, header, root) if ours else JudgeForeignHeader(file, header)
        if verdict:
            yield line, f"#include {match.group(1).strip()}: {verdict}"


def IsCall(text, match):
    """False where the name stands in a declaration or a definition."""
    before = text[:match.start()].rstrip()
    if before.endswith(("->", ".")):
        return True
    qualified = re.search(r"(\w+\s*::\s*)+$|::$", before)
    if qualified:
        before = before[:qualified.start()].rstrip()
    if re.search(r"\b(return|else|do|throw|case|co_return|co_await)$", before):
        return True
    # A type before the name declares; after ")" (a macro's, or a condition's) what follows decides.
    if re.search(r"[\w>*&]$", before):
        return False
    depth, end = 0, match.end() - 1
    while end < len(text):
        depth += {"(": 1, ")": -1}.get(text[end], 0)
        end += 1
        if depth == 0:
            break
    return not re.match(r"\s*(\{|const\b|noexcept\b|override\b|final\b|=\s*(0|default|delete)\b)", text[end:])


def CheckCalls(file, text):
    if kOwners.fullmatch(file):
        return
    text = kSkipped.sub(Blank, text)
    for match in kOwnedCalls.finditer(text):
        if IsCall(text, match):
            line = text.count("\n", 0, match.start()) + 1
            yield line, f"{match.group(1)}(): only the owning wrappers in platform/windows/ call it"


def Check(root):
    """All findings below `root`, and the number of files read."""
    findings, count = [], 0
    for folder in kFolders:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            count += 1
            file, text = path.relative_to(root).as_posix(), path.read_text(encoding="utf-8")
            for line, message in [*CheckIncludes(file, text, root), *CheckCalls(file, text)]:
                findings.append(f"{file}:{line}: {message}")
    return findings, count


# File, a line of it, and a part of the finding that it must give; none where the line is right.
kSamples = [
    ("app/A.cpp", '#include "inventor/I.h"', None),
    ("app/A.cpp", '#include "app/MainDlg.h"', None),
    ("inventor/A.cpp", '#include "ui/U.h"', "inventor/ must not use ui/"),
    ("inventor/A.cpp", "  #  include  <ui/U.h>", "inventor/ must not use ui/"),
    ("platform/A.h", '#include "app/MainDlg.h"', "platform/ must not use app/"),
    ("app/A.cpp", '#include "simulator/S.h"', "app/ must not use simulator/"),
    ("simulator/A.cpp", '#include "inventor/I.h"', "simulator/ must not use inventor/"),
    ("ui/A.cpp", '#include "tests/support/T.h"', "ui/ must not use tests/"),
    ("export/Dialog.cpp", '#include "app/MainDlg.h"', None),
    ("export/Dialog.h", '#include "app/MainDlg.h"', "export/ must not use app/"),
    ("ui/windows/A.cpp", '#include "resources/Icons.h"', None),
    ("export/A.cpp", '#include "resources/Icons.h"', None),
    ("ui/A.cpp", '#include "resources/Icons.h"', "ui/ must not use resources/"),
    ("app/A.cpp", '#include "MainDlg.h"', "no such file"),
    ("app/A.cpp", '#include "../inventor/I.h"', "no such file"),
    ("app/A.cpp", "#include MAIN_HEADER", "neither"),
    ("app/A.cpp", '// #include "simulator/S.h"', None),
    ("app/A.cpp", '/*\n#include "simulator/S.h"\n*/ #include "platform/P.h"', None),
    ("app/A.cpp", '#include "platform/windows/LastError.h"', "windows back end"),
    ("platform/A.cpp", '#include "platform/windows/LastError.h"', "windows back end"),
    ("ui/windows/A.cpp", '#include "platform/windows/LastError.h"', None),
    ("simulator/com/A.cpp", '#include "platform/windows/LastError.h"', None),
    ("simulator/com/A.cpp", '#include "platform/windows/Windowing.h"', "windows back end"),
    ("simulator/A.cpp", '#include "platform/windows/LastError.h"', "windows back end"),
    ("simulator/A.cpp", '#include "simulator/com/C.h"', "COM shell"),
    ("ui/headless/A.cpp", '#include "platform/headless/H.h"', None),
    ("app/A.cpp", '#include "platform/headless/H.h"', "headless back end"),
    ("ui/windows/A.cpp", '#include "platform/headless/H.h"', "headless back end"),
    ("tests/native/A.cpp", '#include "platform/headless/H.h"', None),
    ("app/A.cpp", "#include <windows.h>", "a system"),
    ("platform/A.h", "#include <Windows.h>", "a system"),
    ("simulator/A.cpp", "#include <oleauto.h>", "a system"),
    ("tests/contract/A.cpp", "#include <objbase.h>", "a system"),
    ("platform/windows/A.cpp", "#include <windows.h>", None),
    ("tests/e2e/A.cpp", "#include <windows.h>", None),
    ("platform/A.cpp", "#include <unistd.h>", "a system"),
    ("platform/headless/A.cpp", "#include <sys/stat.h>", None),
    ("app/A.cpp", "#include <string>", None),
    ("app/A.cpp", "#include <sstream>", "too heavy"),
    ("platform/headless/A.cpp", "#include <filesystem>", None),
    ("inventor/A.cpp", "#include <nlohmann/json.hpp>", "a library"),
    ("simulator/A.cpp", "#include <nlohmann/json.hpp>", None),
    ("app/A.cpp", "void F() { object->Release(); }", "Release()"),
    ("app/A.cpp", "void F() { if (o) o . Release ( ); }", "Release()"),
    ("simulator/com/A.cpp", "ULONG F() { return Release(); }", "Release()"),
    ("simulator/com/A.cpp", "void F() { if (last) Release(); }", "Release()"),
    ("simulator/com/A.cpp", "ULONG STDMETHODCALLTYPE Release() override { return --fCount; }", None),
    ("simulator/com/A.cpp", "STDMETHODIMP_(ULONG) TFactory::Release() { return 1; }", None),
    ("simulator/com/A.cpp", "ULONG TFactory::Release();", None),
    ("tests/e2e/A.cpp", "void F() { ::CloseHandle(handle); }", "CloseHandle()"),
    ("ui/windows/A.cpp", "void F() { VariantClear(&v); }", "VariantClear()"),
    ("platform/windows/A.cpp", "int a = 1'000; void F() { SysFreeString(s); } char c = 'x';", "SysFreeString()"),
    ("platform/windows/Dispatch.cpp", "void F() { o->Release(); ::VariantClear(&v); }", None),
    ("app/A.cpp", '// o->Release()\nauto s = "o->Release()"; auto r = R"(o->Release()\n)";', None),
]


def SelfTest():
    headers = ("app/MainDlg.h", "inventor/I.h", "ui/U.h", "simulator/S.h", "simulator/com/C.h", "platform/P.h",
               "platform/windows/LastError.h", "platform/windows/Windowing.h", "platform/headless/H.h", "tests/support/T.h",
               "resources/Icons.h")
    failures = 0
    for file, line, wanted in kSamples:
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for header in headers:
                (root / header).parent.mkdir(parents=True, exist_ok=True)
                (root / header).write_text("#pragma once\n", encoding="utf-8")
            (root / file).parent.mkdir(parents=True, exist_ok=True)
            (root / file).write_text(f"#include <cstdint>\n{line}\n", encoding="utf-8")
            findings, _ = Check(root)
        right = not findings if wanted is None else len(findings) == 1 and wanted in findings[0]
        if right and wanted:
            right = findings[0].startswith(f"{file}:2:")
        if not right:
            failures += 1
            print(f"{file}: {line!r}: wanted {wanted!r}, found {findings}")
    print(f"check-includes.py: {len(kSamples)} samples, {failures} judged wrongly")
    return failures == 0 and len(kSamples) > 0


def main():
    if sys.argv[1:] == ["--self-test"]:
        return 0 if SelfTest() else 1
    if sys.argv[1:]:
        print(__doc__.splitlines()[0], file=sys.stderr)
        return 2
    findings, count = Check(Path(__file__).resolve().parent.parent)
    print("\n".join(findings + [f"check-includes.py: {count} files, {len(findings)} findings"]))
    return 0 if not findings and count > 0 else 1


if __name__ == "__main__":
    sys.exit(main())
