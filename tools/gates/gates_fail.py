#!/usr/bin/env python3
"""The gates name what they are there for: each is run over a small tree with an offence in it."""
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import tree

GATES = Path(__file__).resolve().parent
# Gate, file, contents (or several files with theirs), what the gate must say of it; "" where it must be
# content.
TRIALS = [
    ("layers", "datafile/Zone.cpp", '#include "worksheets/Form.h"\n', "datafile may not know worksheets"),
    ("layers", "season/read.cpp", '#include "datafile/Zone.h"\n', "season may not know datafile"),
    ("layers", "season/read.cpp", "#include <QString>\n", "season knows no Qt"),
    ("layers", "jet/src/row.cpp", "#include <QString>\n", "jet knows no Qt"),
    ("layers", "jet/src/page/cache.cpp", '#include "table/table.h"\n', "only those below it"),
    ("layers", "jet/src/rows/row.cpp", '#include "page/pager.h"\n', "has no place in its order"),
    ("layers", "jet/src/lone.cpp", '#include "page/pager.h"\n', "has no place in its order"),
    ("layers", "jet/src/table/row.cpp", '#include "page/pager.h"\n', ""),
    ("layers", "shell/Frame.cpp", '#include "jet/database.h"\n', "include the engine"),
    ("layers", "platform/dao/Rows.cpp", '#include "page/pager.h"\n', "the engine's private side"),
    ("layers", "import/Copy.cpp", '#include "import/Absent.h"\n', "a file that is not there"),
    ("layers", "worksheets/Form.cpp", '#include "datafile/Zone.h"\n', ""),
    ("layers", "worksheets/Form.cpp", '#include "../datafile/Zone.h"\n', "a path through the folder above"),
    ("layers", "worksheets/nvc/Totals.cpp", '#include "worksheets/cost/frmCost.h"\n',
     "do not know each other's forms"),
    ("layers", "worksheets/cost/frmCost.cpp", '#include "worksheets/cost/frmCost.h"\n', ""),
    ("layers", "reportpdf/page.cpp", '#include "tarnreview/Window.h"\n', "reportpdf may not know tarnreview"),
    ("layers", "rollup/rows.cpp", "#include <QString>\n", "rollup knows no Qt"),
    ("architecture", "ARCHITECTURE.md",
     "## The layers\n\n    jet  <-  attic\n\nA layer may use those below it.\n", "attic: no such folder"),
    ("architecture", "ARCHITECTURE.md",
     "## The layers\n\n    jet\n\nA layer may use those below it.\n", "datafile/: a folder without a line"),
    ("architecture", "ARCHITECTURE.md",
     "## The layers\n\n    jet\n\nA layer may use those below it, as in `platform/Gone.h`.\n",
     "`platform/Gone.h` is nowhere"),
    ("architecture", "worksheets/cost/c35AACTable.h",
     {"ARCHITECTURE.md": "## The layers\n\n    jet\n\nA layer may use those below it.\n",
      "worksheets/cost/c35AACTable.h": "#include <QWidget>\n"}, "a table object that knows a widget"),
    ("contributing", "CONTRIBUTING.md", "## What the gates ask\n\n| Gate | |\n|---|---|\n| `absent` | |\n",
     "absent: the page names a gate that is not there"),
    ("contributing", "CONTRIBUTING.md", "## What the gates ask\n\nOne: `worksheets/Absent.h`.\n",
     "`worksheets/Absent.h` is nowhere"),
    ("contributing", "tests/absent/Row_test.cpp", "int a;\n", "absent: a folder of tests that the page does not"),
    ("namespaces", "worksheets/Row.h", "class Row {\n};\n", "Row is in no namespace"),
    ("namespaces", "worksheets/Row.cpp", "namespace {\nint a;\n}\nstruct Row final : Base {\n};\n",
     "Row.cpp:4: Row is in no namespace"),
    ("namespaces", "shell/Row.h", "struct [[nodiscard]] Row {\n};\n", "Row is in no namespace"),
    ("namespaces", "bench/Row.h", "template <class T>\nclass Row {\n};\n", "Row is in no namespace"),
    ("namespaces", "worksheets/Row.h", "namespace worksheets {\nclass Row {\n};\n}\nclass vsFlexGrid;\n", ""),
    ("namespaces", "worksheets/Row.h", "class frm4FMZs : public Page {\n};\n", ""),
    ("portability", "jet/src/page.cpp", "#include <unistd.h>\n", "unistd.h"),
    ("portability", "shell/Start.cpp", "#ifdef Q_OS_WIN\n#endif\n", "Q_OS_WIN"),
    ("portability", "shell/Bus.h", "#include <QtDBus>\n", "QtDBus"),
    ("portability", "shell/Bus.h", "#include <QDBusConnection>\n", "QDBusConnection"),
    ("portability", "shell/Bus.h", "#include <QtGui/private/qwindow_p.h>\n", "QtGui/private"),
    ("portability", "platform/system/Bus.cpp", "#include <QDBusConnection>\n", ""),
    ("portability", "jet/tools/dump.cpp", 'auto* pipe = popen("ls", "r");\n', "popen"),
    ("portability", "jet/src/os/file.cpp", "#include <unistd.h>\n", ""),
    ("portability", "shell/Start.cpp", "// popen(line) is not used\nint fork_ = 0;\n", ""),
    ("sizes", "shell/Long.cpp", "int a;\n" * 801, "801 lines"),
    ("sizes", "tests/shell/Long_test.cpp", "int a;\n" * 801, ""),
    ("sizes", "tests/shell/Long_test.cpp", "int a;\n" * 1201, "1201 lines"),
    ("sizes", "shell/Body.cpp", "void Body() {\n" + "    Go();\n" * 60 + "}\n",
     "a function of 62 lines that does not say why"),
    ("sizes", "shell/Body.cpp", "void Body() {\n" + "    Go();\n" * 40 + "}\n",
     "functions over 35 lines"),
    ("sizes", "shell/Body.cpp", "void Body() {\n" + "    Go();\n" * 20 + "}\n", ""),
    ("sizes", "shell/Body.h", "class A {\n    void Body() {\n" + "        Go();\n" * 60 + "    }\n};\n",
     "a function of 62 lines that does not say why"),
    ("sizes", "shell/Body.cpp", "const auto kBody = [](int a) -> int {\n" + "    Go();\n" * 60 + "};\n",
     "a function of 62 lines that does not say why"),
    ("sizes", "shell/Body.cpp", "const int kBody = [] {\n" + "    Go();\n" * 60 + "}();\n",
     "a function of 62 lines that does not say why"),
    ("sizes", "shell/Body.cpp",
     "const std::map<int, Go> kBodies = {\n    {1, [] {\n" + "        Go();\n" * 60 + "    }},\n};\n",
     "a function of 64 lines that does not say why"),
    ("sizes", "shell/Body.cpp", "constexpr std::array<int, 60> kBody = {\n" + "    1,\n" * 60 + "};\n", ""),
    ("sizes", "shell/Body*",
     {"shell/Body.h": "class Body {\n" + "    int a;\n" * 700 + "};\n",
      "shell/BodyParts.cpp": ("void Body::Part::Go() {\n" + "    Go();\n" * 20 + "}\n") * 5},
     "the class Body has 812 lines in all"),
    ("sizes", "shell/Body*",
     {"shell/Body.h": "class Body {\n" + "    int a;\n" * 350 + "};\n",
      "shell/Other.cpp": ("void Other::Go() {\n" + "    Go();\n" * 20 + "}\n") * 5}, ""),
    ("handlers", "shell/Frame.cpp", "connect(a, &A::b, this, [this] { cmdAdd_Click(); });\n",
     "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", "connect(a, &A::b, this, &Frame::cmdAdd_Click);\n",
     "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", "connect(a, &A::b, this, [this] { Refill(); });\n",
     "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", "QTimer::singleShot(0, this, &Frame::Retry);\n",
     "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", 'menu.addAction("Go", this, &Frame::mnuGo_Click);\n',
     "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", "new QShortcut(Qt::Key_F5, this, [this] { Refill(); });\n",
     "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", "QMetaObject::connectSlotsByName(this);\n", "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", "const auto wire = [](auto... all) { QObject::connect(all...); };\n",
     "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", "const auto wire = [this](auto* a, auto b, auto c) { connect(a, b, this, c); };\n",
     "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", "const auto wire = &QObject::connect<Signal, Slot>;\n",
     "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", "#define WIRE connect\n", "does not run under the trap"),
    ("handlers", "shell/Frame.cpp", '// To connect is to trap.\nLog("connect it");\n', ""),
    ("handlers", "shell/Frame.cpp", "menu.addAction(caption);\nnew QShortcut(keys, this);\n", ""),
    ("handlers", "shell/Frame.cpp", "connect(a, &A::b, box, &QWidget::show);\n", ""),
    ("handlers", "shell/Frame.cpp", "Handle<&Frame::cmdAdd_Click>(a, &A::b, this);\n", ""),
    ("handlers", "shell/Frame.cpp",
     'connect(a, &A::b, this, Trapped("F.cmdAdd_Click", [this] { cmdAdd_Click(); }));\n', ""),
    ("waiting", "tests/shell/Frame_test.cpp", "QTest::qSleep(50);\n", "sleeps"),
    ("waiting", "tests/shell/Frame_test.cpp", "QTest::qWait(50);\n", "sleeps"),
    ("waiting", "tests/shell/Frame_test.cpp", "using QTest::qWait;\n", "sleeps"),
    ("waiting", "tests/shell/Frame_test.cpp", "QTimer::singleShot(500, [] {});\n", "sleeps"),
    ("waiting", "tests/shell/Frame_test.cpp", "QDeadlineTimer over(500);\n", "looks at a clock"),
    ("waiting", "tests/gui/walk.py", "import time\n\ntime.sleep(1)\n", "sleeps"),
    ("waiting", "tests/gui/walk.py", "from time import sleep as pause\n\npause(1)\n", "sleeps"),
    ("waiting", "tests/gui/walk.py", "import time\n\nnap = time.sleep\nnap(1)\n", "sleeps"),
    ("waiting", "tests/gui/walk.py", "import threading\n\nthreading.Event().wait(1)\n", "sleeps"),
    ("waiting", "tests/gui/walk.py", "from threading import Event\n\nnap = Event()\nnap.wait(1)\n", "sleeps"),
    ("waiting", "tests/gui/walk.py", "from threading import Event\n\nseen = Event()\ngo(seen.set)\nseen.wait(1)\n", ""),
    ("waiting", "tests/gui/walk.py", "import select\n\nselect.select([], [], [], 1)\n", "sleeps"),
    ("waiting", "tests/gui/walk.py", 'import subprocess\n\nsubprocess.run(["sleep", "1"])\n', "sleeps"),
    ("waiting", "tests/gui/walk.py", 'import os\n\nos.system("sync; sleep 1")\n', "sleeps"),
    ("waiting", "tests/gui/walk.py", "import threading\n\nthreading.Timer(1, print).start()\n", "sleeps"),
    ("waiting", "tests/gui/walk.py", "import time\n\nend = time.monotonic() + 1\n", "looks at a clock"),
    ("waiting", "tests/gui/walk.py", "import time\n\n# The server counts seconds.\nend = time.monotonic() + 1\n", ""),
    ("waiting", "tests/gui/walk.py", "program.wait(60)\n", ""),
    ("waiting", "tests/shell/Frame_test.cpp", "const QTime now = QTime::currentTime();\n", "looks at a clock"),
    ("waiting", "tests/shell/Frame_test.cpp", "const auto now = QDateTime::currentDateTime();\n", "looks at a clock"),
    ("waiting", "tests/shell/Frame_test.cpp", "const auto now = std::time(nullptr);\n", "looks at a clock"),
    ("waiting", "tests/shell/Frame_test.cpp", "const auto now = time(nullptr);\n", "looks at a clock"),
    ("waiting", "tests/shell/Frame_test.cpp",
     "// The entry is from between two readings.\nconst QTime now = QTime::currentTime();\n", ""),
    ("waiting", "tests/shell/Frame_test.cpp", "::poll(nullptr, 0, 100);\n", "sleeps"),
    ("waiting", "tests/gui/walk.py",
     "import time\n\n\ndef wait_for(condition):\n    while not condition():\n        time.sleep(1)\n", ""),
    ("waiting", "tests/shell/Frame_test.cpp", "auto now = std::chrono::steady_clock::now();\n",
     "looks at a clock"),
    ("waiting", "tests/shell/Frame_test.cpp", "QTest::qWaitFor([] { return Shown(); });\n", ""),
    ("test_names", "tests/worksheets/Rows_test.cpp", "int a;\n", "named after no file of worksheets/"),
    ("test_names", "tests/worksheets/FormKeys_test.cpp", "int a;\n", ""),
    ("test_names", "tests/worksheets/rows_walk_test.cpp", "int a;\n", ""),
    ("scripts", "tools/go.sh", "#!/bin/sh\ncd $1\nif [ $# = 1 ]; then exit; fi\n", "SC2164"),
    ("scripts", "tools/go.sh", '#!/bin/sh\ncd "$1" || exit\n', ""),
    ("scripts", "tools/go.sh", 'cd "$1" || exit\n', "a script without its first line"),
    ("scripts", "tools/go.sh", '#!/usr/bin/env zsh\ncd "$1"\n', "a script without its first line"),
    ("scripts", "tools/go*", {"tools/go.sh": '#!/bin/sh\n. "$(dirname "$0")/gone.sh"\n', "tools/gone.sh": "gone=1\n"}, ""),
    ("scripts", "tools/go.py", "def go(folder, 1):\n    pass\n", "invalid syntax"),
    ("scripts", "tools/go.py", "def go(folder):\n    pass\n", ""),
    ("formatting", "shell/Row.cpp", "int  a;\n", "shell/Row.cpp"),
    ("formatting", "shell/Row.cpp", "int a;\n", ""),
    ("help_pages", "help/pages/zones.html", '<p><a href="absent.html">Zones</a></p>\n',
     "leads nowhere"),
    ("help_pages", "help/pages/zones.html", "<p>Zones</b>\n", "closes what was not open"),
    ("help_pages", "shell/Frame.cpp", "constexpr int kHelpContextId = 99;\n", "no topic context-99"),
    ("help_pages", "shell/Frame.cpp", 'setProperty("helpContextId", 99);\n', "no topic context-99"),
    ("help_pages", "shell/Frame.cpp", "SetHelpContextId(*this, kTopic);\n", "give the number as kHelpContextId"),
    ("help_pages", "help/pages/new.html", "<p>New</p>\n", "not in the contents list"),
    ("help_pages", "help/pages/zones.html", "<p>Zones</p>\n", ""),
    ("translations", "shell/Rest.cpp", 'QString Tr(const char* text) { return translate("Rest", text); }\n',
     "a translator does not get"),
    ("translations", "shell/Rest.cpp", 'QString Tr() { return translate("Rest", "Rows"); }\n', ""),
    ("debris", "shell/grid.png", "PNG", "a picture lies in"),
    ("debris", "help/pages/pictures/grid.png", "PNG", ""),
    ("debris", "shell/screen of today", "PNG", "has no blanks"),
    ("debris", "shell/Rest.cpp", "int a;  // TO" + "DO\n", "unfinished work"),
    ("debris", "shell/Rest.cpp", "int a;  // to" + "do: rename\n", "unfinished work"),
    ("debris", "shell/Rest.cpp", "int a;  // NO" + "LINT\n", "name the check"),
    ("debris", "shell/Rest.cpp", "// Close(file);\n", "commented out"),
    ("debris", "shell/Rest.cpp", "// Close(file)\n", "commented out"),
    ("debris", "shell/Rest.cpp", "// grid->Close(file, Row(3))\n", "commented out"),
    ("debris", "shell/Rest.cpp", "// What Close (above) left.\n// Close(file) frees it.\n", ""),
    ("debris", "shell/Rest.cpp", "// const int row = grid->Rows();\n", "commented out"),
    ("debris", "shell/Rest.cpp", "    // rows = 3;\n", "commented out"),
    ("debris", "shell/Rest.cpp", "int a;  // emit Click();\n", "commented out"),
    ("debris", "shell/Rest.cpp", "// QString text = Text(row);\n", "commented out"),
    ("debris", "shell/Rest.cpp", "    // int a;\n", "commented out"),
    ("debris", "shell/Rest.cpp", "// row += 3\n", "commented out"),
    ("debris", "shell/Rest.cpp", "#if false\nint a;\n#endif\n", "switched off"),
    ("debris", "shell/Rest.cpp", "// if (row > 3) {\n", "commented out"),
    ("debris", "shell/Rest.cpp", "    // }\n", "commented out"),
    ("debris", "shell/Rest.cpp", "/* Close(file); */\n", "commented out"),
    ("debris", "shell/Rest.cpp", "/* int a;\n   Close(file); */\n", "commented out"),
    ("debris", "shell/Rest.cpp", "#if 0\nint a;\n#endif\n", "switched off"),
    ("debris", "shell/Rest.cpp", "// The row is kept;\n// its text is not (see Text).\n", ""),
    ("debris", "shell/Rest.h", "// So it is used:\n//     Rows rows;\n//     rows.Add(3);\n", ""),
    ("debris", "shell/Rest.cpp", "int a; \n", "blanks at the end"),
    ("debris", "shell/Rest.cpp", "// As in iss" + "ue 3.\n", "give the reason itself"),
    ("debris", "shell/Rest.cpp", "// Its col" + "our.\n", "one spelling"),
    ("debris", "shell/Rest.cpp", "void Tell" + "Failure() {}\n", "reported or shown"),
    ("debris", "tests/shell/Rest_test.cpp", "TEST_F(Rest, NoFile_Is" + "Told) {}\n", "reported or shown"),
    ("debris", "README.md", "Look into /ho" + "me/ann/prep.\n", "one person's machine"),
    ("debris", "README.md", "<<<<<" + "<< main\n", "a merge that was not finished"),
    ("debris", "shell/Rest.cpp", "// Closing it frees the lock.\n", ""),
]
# What the includes of the trials mean.
THERE = ["worksheets/Form.h", "tarnreview/Window.h", "worksheets/cost/frmCost.h", "jet/include/jet/database.h", "jet/src/page/pager.h",
         "jet/src/table/table.h",
         "datafile/Zone.h"]


def say(gate, name, contents):
    with tempfile.TemporaryDirectory(prefix="tarn gates ") as folder:
        root = Path(folder)
        shutil.copytree(GATES, root / "tools/gates", ignore=shutil.ignore_patterns("__pycache__"))
        shutil.copytree(tree.ROOT / "help", root / "help")
        for page in (".clang-format", "Makefile", "CMakePresets.json", "CONTRIBUTING.md"):
            shutil.copy(tree.ROOT / page, root)
        (root / "tests").mkdir()
        shutil.copy(tree.ROOT / "tests/README.md", root / "tests")
        files = contents if isinstance(contents, dict) else {name: contents}
        for file in [*THERE, *files]:
            (root / file).parent.mkdir(parents=True, exist_ok=True)
            (root / file).write_text(files.get(file, "#pragma once\n"), encoding="utf-8")
        run = subprocess.run([sys.executable, "-B", root / f"tools/gates/{gate}.py"],
                             capture_output=True, text=True, check=False)
    return run.returncode, run.stdout + run.stderr


def main():
    offenders = []
    for gate, name, contents, wanted in TRIALS:
        code, said = say(gate, name, contents)
        if code != (1 if wanted else 0) or wanted not in said:
            offenders.append(f"{gate} on {name} ({wanted or 'nothing wrong'}): {code}, {said}")
    tree.finish(offenders, "the gates find what they are there for")


main()
