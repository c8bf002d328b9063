"""tools/contract-coverage: each kind of gap is told, and each reason that does not hold any more."""

import json
import subprocess
import tempfile
import unittest
from pathlib import Path

from sandbox import REPOSITORY

TABLES = {
    "ILogicalDeviceGen3Mouse": "0 int IDevice::deviceType() const [pure]\n1 Mouse::~Mouse()\n",
    "ILogicalDeviceGen3": "0 void ILogicalDeviceGen3::ppidChanged(QString) [pure]\n",
    "ILogicalDevicePlugin": "0 bool IDevicePlugin::initialize(bool) [pure]\n1 ILogicalDevicePlugin::~ILogicalDevicePlugin()\n",
    "IPhysicalDevice": "0 quintptr IPhysicalDevice::forwardedCall(quintptr) [pure]\n1 IPhysicalDevice::~IPhysicalDevice()\n",
    "IPhysicalDeviceDongle": "0 void IPhysicalDeviceDongle::reserved0() [pure]\n1 bool Dongle::setRate(DeviceId, int) [pure]\n",
    "IHostServices": "0 void IHostServices::buttonEvent(const QString &, int, bool) [pure]\n",
}
METHODS = '    "signal ppidChanged(QString ppid)",\n    "private slot onPPIDChanged(QString ppid)",\n'
PLUGIN_HEADER = """#define deviceDebug() \\
    GATED_LOG(debugLogEnabled(), qCDebug(deviceLog))
"""
PLUGIN = 'Plugin::~Plugin()\n{\n    pluginDebug() << "~Plugin";\n}\n'
DEVICE = """void Device::setRate(int rate)
{
    // deviceDebug() << "not a log line";
    deviceDebug() << "rate :" << rate << ", pending; :"
                  << m_pending;
    if (failure)
        deviceCritical() << failure->logText << rate;
}
std::optional<OwnLibraryFailure> locate()
{
    return OwnLibraryFailure{"locate failed, gle :", 1};
}
"""
UNSEEN = '[[unseen]]\nkind = "receiver operation"\nnames = ["reserved*"]\nreason = "Not for plugins."\n'
CATEGORY = "com.orvane.KVX.Plugin.LogicalDevice.RV418."


def log(severity, category, text):
    return {"kind": "log", "name": severity, "arguments": [text], "category": CATEGORY + category}


def entry(kind, name):
    return {"kind": kind, "name": name, "arguments": []}


RATE_LINE = log("debug", "LogicalDevice", "rate : 500 , pending; : 0")
WHOLE = [
    entry("call", "initialize"),
    entry("call", "deviceType"),
    entry("call", "~Mouse"),
    entry("call", "ppidChanged"),
    entry("signal", "ppidChanged"),
    entry("receiver", "forwardedCall"),
    entry("receiver", "setRate"),
    entry("host", "buttonEvent"),
    entry("report", "anything"),
    entry("verdict", "verdict"),
    RATE_LINE,
    log("critical", "LogicalDevice", "locate failed, gle : 0x7e"),
    log("debug", "LogicalDevicePlugin", "~Plugin"),
    {"kind": "log", "name": "warning", "arguments": ["somebody else's"], "category": "default"},
]
TABLE = """kind                  seen    of   not to be seen
device slot              3     3                0
factory slot             1     1                0
signal                   1     1                0
receiver operation       2     2                1
host operation           1     1                0
log text                 3     3                0
"""


class ContractCoverageTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.base = Path(folder.name)
        self.timelines = self.base / "timelines"
        for name, text in TABLES.items():
            self.write(f"tests/abi/tables/{name}.txt", text)
        self.write("tests/features/tst_MetaObject.cpp", METHODS)
        self.write("plugin/GatedLog.h", PLUGIN_HEADER)
        self.write("plugin/Plugin.cpp", PLUGIN)
        self.write("plugin/Device.cpp", DEVICE)
        self.write("tests/coverage/unseen.toml", UNSEEN)
        self.write_timelines(WHOLE)

    def write(self, name, text):
        path = self.base / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def write_timelines(self, entries):
        """In two files: what one program did not see another one may have."""
        for number, part in enumerate((entries[::2], entries[1::2])):
            lines = [{"schemaVersion": 1}, *part]
            self.write(f"timelines/tst_{number}-1.jsonl", "".join(json.dumps(line) + "\n" for line in lines))

    def run_tool(self, *words):
        return subprocess.run(
            [REPOSITORY / "tools" / "contract-coverage", *words], capture_output=True, text=True, check=False
        )

    def judge(self):
        return self.run_tool(self.timelines, "--repository", self.base)

    def assert_problems(self, *problems):
        process = self.judge()
        self.assertEqual(
            (process.stderr.splitlines(), process.returncode), ([f"contract-coverage: {line}" for line in problems], 1)
        )
        self.assertIn("device slot ", process.stdout)

    def assert_refused(self, sentence):
        process = self.judge()
        self.assertEqual(
            (process.stderr, process.stdout, process.returncode), (f"contract-coverage: {sentence}\n", "", 2)
        )


class Seen(ContractCoverageTest):
    def test_all(self):
        process = self.judge()
        self.assertEqual((process.stdout, process.stderr, process.returncode), (TABLE, "", 0))

    def test_gaps(self):
        gaps = {
            "device slot never seen: deviceType": 1,
            "device slot never seen: ~Mouse": 2,
            "factory slot never seen: initialize": 0,
            "signal never seen: ppidChanged": 4,
            "receiver operation never seen: setRate": 6,
            "host operation never seen: buttonEvent": 7,
            "log text never seen: debug LogicalDevice: rate : * , pending; : *": 10,
            "log text never seen: critical LogicalDevice: locate failed, gle : *": 11,
            "log text never seen: debug LogicalDevicePlugin: ~Plugin": 12,
        }
        for sentence, index in gaps.items():
            with self.subTest(sentence):
                self.write_timelines(WHOLE[:index] + WHOLE[index + 1 :])
                self.assert_problems(sentence)

    def test_table_tells_of_the_gap(self):
        self.write_timelines(WHOLE[1:])
        self.assertIn("factory slot             0     1                0\n", self.judge().stdout)

    def test_signal_does_not_stand_for_the_call_of_its_slot(self):
        self.write_timelines(WHOLE[:3] + WHOLE[4:])
        self.assert_problems("device slot never seen: ppidChanged")

    def test_other_severity_or_category_is_another_text(self):
        for severity, category in (("warning", "LogicalDevice"), ("debug", "LogicalDevicePlugin")):
            other = log(severity, category, "rate : 500 , pending; : 0")
            self.write_timelines([other if line is RATE_LINE else line for line in WHOLE])
            self.assert_problems(
                "log text never seen: debug LogicalDevice: rate : * , pending; : *",
                f"log text seen that nothing tells of: {severity} {category}: rate : 500 , pending; : 0",
            )

    def test_new_log_line(self):
        self.write("plugin/New.cpp", 'void f()\n{\n    deviceWarning() << "new (text)";\n}\n')
        self.assert_problems("log text never seen: warning LogicalDevice: new (text)")

    def test_longer_text_does_not_stand_for_its_beginning(self):
        self.write("plugin/New.cpp", 'void f()\n{\n    deviceDebug() << "rate :" << rate;\n}\n')
        self.assert_problems("log text never seen: debug LogicalDevice: rate : *")

    def test_what_nothing_tells_of(self):
        for kind, name in {"call": "device slot", "receiver": "receiver operation", "host": "host operation"}.items():
            with self.subTest(kind):
                self.write_timelines([*WHOLE, entry(kind, "unheardOf")])
                self.assert_problems(f"{name} seen that nothing tells of: unheardOf")


class Unseen(ContractCoverageTest):
    def test_seen_all_the_same(self):
        self.write_timelines([*WHOLE, entry("receiver", "reserved0")])
        self.assert_problems("tests/coverage/unseen.toml: the receiver operation 'reserved0' was seen all the same")

    def test_not_there_any_more(self):
        self.write("tests/coverage/unseen.toml", UNSEEN.replace('"reserved*"', '"reserved*", "gone"'))
        self.assert_problems("tests/coverage/unseen.toml: there is no receiver operation 'gone' any more")

    def test_name_with_a_value_in_it(self):
        text = "debug LogicalDevice: rate : * , pending; : *"
        self.write("tests/coverage/unseen.toml", f'{UNSEEN}[[unseen]]\nkind = "log text"\nnames = ["{text}"]\nreason = "-"\n')
        self.write_timelines([line for line in WHOLE if line is not RATE_LINE])
        self.assertEqual(self.judge().returncode, 0)

    def test_unknown_kind(self):
        self.write("tests/coverage/unseen.toml", UNSEEN.replace("receiver operation", "operation"))
        self.assert_refused(
            f"{self.base}/tests/coverage/unseen.toml: no kind is called 'operation' (there are: device slot, "
            "factory slot, signal, receiver operation, host operation, log text)"
        )

    def test_reason_is_needed(self):
        for reason in ('reason = " "\n', ""):
            self.write("tests/coverage/unseen.toml", UNSEEN.replace('reason = "Not for plugins."\n', reason))
            process = self.judge()
            self.assertRegex(process.stderr, r"unseen\.toml: each \[\[unseen\]\] needs kind, names and reason")
            self.assertEqual((process.stdout, process.returncode), ("", 2))

    def test_no_toml(self):
        self.write("tests/coverage/unseen.toml", "[[unseen]\n")
        self.assertEqual((self.judge().stdout, self.judge().returncode), ("", 2))


class BadInput(ContractCoverageTest):
    def test_no_timelines(self):
        for path in self.timelines.iterdir():
            path.unlink()
        self.assert_refused(f"{self.timelines} holds no timelines (*.jsonl); ./dev coverage writes them")

    def test_no_folder(self):
        process = self.run_tool(self.base / "missing", "--repository", self.base)
        self.assertEqual((process.stdout, process.returncode), ("", 2))
        self.assertIn("missing holds no timelines", process.stderr)

    def test_no_entry(self):
        path = self.timelines / "tst_0-1.jsonl"
        for text in ("[]", "{", '{"kind": "call"}'):
            self.write("timelines/tst_0-1.jsonl", f'{{"schemaVersion":1}}\n{text}\n')
            self.assert_refused(f"{path}:2: this is no entry of a timeline: '{text}'")

    def test_other_schema(self):
        self.write("timelines/tst_0-1.jsonl", '{"schemaVersion":2}\n')
        self.assert_refused(f"{self.timelines}/tst_0-1.jsonl: its schema version is 2, not 1")

    def test_table_that_is_none(self):
        self.write("tests/abi/tables/IHostServices.txt", "nothing\n")
        self.assert_refused(f"{self.base}/tests/abi/tables/IHostServices.txt:1: this is no slot of a table: 'nothing'")

    def test_no_signals(self):
        self.write("tests/features/tst_MetaObject.cpp", "")
        self.assertEqual(self.judge().returncode, 2)

    def test_log_line_that_begins_with_a_value(self):
        self.write("plugin/New.cpp", "void f()\n{\n    deviceDebug() << rate;\n}\n")
        self.assert_refused(f"{self.base}/plugin/New.cpp: the log line '<< rate' does not begin with a literal text")

    def test_log_line_that_cannot_be_read(self):
        self.write("plugin/New.cpp", 'void f()\n{\n    deviceDebug().nospace() << "text";\n    deviceDebug()\n')
        self.assert_refused(
            f"{self.base}/plugin/New.cpp: one of its log lines cannot be read; write it as deviceDebug() << ...;"
        )

    def test_usage(self):
        self.assertEqual(self.run_tool().returncode, 2)


if __name__ == "__main__":
    unittest.main()
