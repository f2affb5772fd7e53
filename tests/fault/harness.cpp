// Runs every scenario once for every call that can fail, and compares what comes of it with an
// undisturbed run.
//   fault_tests FOLDER [--most N] [--only TEXT] [--without TEXT]
// FOLDER is for its files. --most limits the failures of one kind and way in one scenario to N,
// spread over the calls. The exit status is 0 when there is nothing to complain about.
// Scenarios run in processes of their own, so that one that crashes is counted and the next call
// takes its turn.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <thread>

#include "tests/fault/process.h"
#include "tests/fault/scenarios.h"
#include "tests/support/files.h"

namespace ko::fault {
namespace {
namespace fs = std::filesystem;

enum Verdict {
    same,     // done, with the results and files of an undisturbed run
    refused,  // the stated failure, everything as it was
    stated,   // the success that is stated for this failure; an old file is there as it was
    crash, hang, exception, wrongSuccess, damaged, leftOver, changedRecord, leak, noReason, unsteady,
    kVerdicts
};
constexpr const char* kVerdictNames[kVerdicts] = {
    "same", "refused", "stated success", "crash", "hang", "exception", "wrong success",
    "damaged file", "left-over", "changed record", "leak", "no reason", "unsteady undisturbed"};
constexpr bool isGood(int verdict) { return verdict <= stated; }

struct Injection {
    Kind kind;
    Way way;
    uint64_t at;
};

std::string nameOf(const Injection& injection) {
    return std::string(kKindNames[static_cast<int>(injection.kind)]) + ' ' +
           kWayNames[static_cast<int>(injection.way)] + ' ' + std::to_string(injection.at);
}

// Every call of every kind in every way; at most so many of one kind and way. A scenario that takes
// long has then no more than one of the kinds that matter most.
std::vector<Injection> injectionsFor(const Calls& calls, uint64_t most, bool takesLong) {
    std::vector<Injection> all;
    if (most != UINT64_MAX && takesLong) {
        for (const Kind kind : {Kind::memory, Kind::open, Kind::read, Kind::write, Kind::flush})
            if (const uint64_t count = calls.of[static_cast<int>(kind)])
                all.push_back({kind, Way::once, count / 2 + 1});
        return all;
    }
    for (int kind = 0; kind < kKinds; ++kind)
        for (int way = 0; way < kWays; ++way) {
            if (!applies(static_cast<Kind>(kind), static_cast<Way>(way))) continue;
            const uint64_t count = calls.of[kind], chosen = std::min(count, most);
            for (uint64_t at = 0; at < chosen; ++at)
                all.push_back({static_cast<Kind>(kind), static_cast<Way>(way),
                               at * count / chosen + 1});
        }
    return all;
}

// What a child process has got to; its parent reads it, whatever became of the child.
struct Progress {
    uint64_t next = 0;  // the injection under way
    uint64_t total = 0;
    uint64_t calls[kKinds] = {};
    uint64_t injected[kKinds] = {};
    uint64_t verdicts[kVerdicts] = {};
    Injection current{};
};

class ProgressFile {
public:
    explicit ProgressFile(const std::string& path) : file_(std::fopen(path.c_str(), "r+b")) {
        if (!file_) file_ = std::fopen(path.c_str(), "w+b");
        if (!file_) std::exit(2);
    }
    ~ProgressFile() { std::fclose(file_); }
    ProgressFile(const ProgressFile&) = delete;
    Progress load() {
        Progress progress;
        std::rewind(file_);
        if (std::fread(&progress, sizeof progress, 1, file_) != 1) progress = {};
        return progress;
    }
    void store(const Progress& progress) {
        std::rewind(file_);
        std::fwrite(&progress, sizeof progress, 1, file_);
        std::fflush(file_);
    }

private:
    std::FILE* file_;
};

void report(const std::string& scenario, const std::string& injection, int verdict) {
    std::printf("  %s: %s: %s\n", scenario.c_str(), injection.c_str(), kVerdictNames[verdict]);
    std::fflush(stdout);
}

// ---- One scenario, in a process of its own ----

using Files = std::map<std::string, uint64_t>;  // by name, what they hold

Files filesOut() {
    Files files;
    for (const auto& entry : fs::directory_iterator("out")) {
        const test::Bytes bytes = test::readFile(entry.path().string());
        files[entry.path().filename().string()] =
            Digest().number(static_cast<int64_t>(bytes.size())).bytes(bytes.data(), bytes.size());
    }
    return files;
}

class Runner {
public:
    explicit Runner(const Scenario& scenario) : scenario_(scenario) {
        before_ = restored();
        if (scenario.missing) missingRecord_ = run({}, scenario.missing).result.record;
    }

    // The first undisturbed run may fill what is kept for later; from then on all are alike.
    Calls learn() {
        run({}, scenario_.run);
        expected_ = run({}, scenario_.run);
        return expected_.calls;
    }
    // What differs from one undisturbed run to the next; null: nothing.
    const char* differs() {
        if (!expected_.result.done) return "it fails";
        const Outcome again = run({}, scenario_.run);
        if (again.threw) return "it throws";
        if (again.result.results != expected_.result.results) return "results differ";
        if (again.files != expected_.files) return "files differ";
        if (again.calls.of[0] != expected_.calls.of[0]) return "calls differ";
        return again.grew() && keepsGrowing({}) ? "it keeps memory or files" : nullptr;
    }

    Verdict inject(const Injection& injection) {
        const Plan plan{injection.kind, injection.way, injection.at};
        const Outcome seen = run(plan, scenario_.run);
        const Verdict verdict = judge(injection, seen);
        return isGood(verdict) && seen.grew() && keepsGrowing(plan) ? leak : verdict;
    }

private:
    struct Outcome {
        Result result;
        Calls calls;
        Files files;
        int64_t moreBlocks = 0;
        int moreFiles = 0, reason = 0;
        bool threw = false;
        bool grew() const { return moreBlocks > 0 || moreFiles > 0; }
    };

    // The folder as it is before a run.
    Files restored() {
        Files files = filesOut();
        if (known_ && files == before_) return files;
        known_ = true;
        for (const auto& entry : fs::directory_iterator("out")) fs::remove_all(entry.path());
        if (scenario_.overOld) {
            test::Bytes old(5000);
            for (size_t at = 0; at < old.size(); ++at) old[at] = static_cast<uint8_t>(at * 7);
            test::writeFile(scenario_.output, old);
        }
        return filesOut();
    }

    Outcome run(const Plan& plan, const std::function<Result(Run&)>& work) {
        if (!scenario_.output.empty()) restored();
        fillWith(fill_ = static_cast<uint8_t>(fill_ * 5 + 1));  // what is not set differs each time
        Outcome outcome;
        Run run(plan);
        // On a thread that has never thrown: the first exception of a thread takes memory too.
        const Held before = held();
        const int files = openFiles();
        std::thread([&] { outcome.result = work(run); }).join();
        outcome.moreBlocks = held().blocks - before.blocks;
        outcome.moreFiles = openFiles() - files;
        outcome.calls = run.calls;
        outcome.threw = run.threw;
        outcome.reason = run.reasonGiven;
        if (!scenario_.output.empty()) outcome.files = filesOut();
        return outcome;
    }

    Verdict judge(const Injection& injection, const Outcome& seen) const {
        if (seen.threw) return exception;
        for (const auto& [name, content] : seen.files) {
            const auto old = before_.find(name);
            const auto complete = expected_.files.find(name);
            if (old == before_.end() && complete == expected_.files.end()) return leftOver;
            const bool isOld = old != before_.end() && content == old->second;
            const bool isComplete = complete != expected_.files.end() && content == complete->second;
            if (!isOld && !isComplete) return damaged;
        }
        for (const auto& [name, content] : before_)
            if (!seen.files.contains(name)) return damaged;
        const bool filesAreNew = seen.files == expected_.files;
        if (seen.result.done) {
            if (seen.result.results == expected_.result.results && filesAreNew) return same;
            const bool notBegun = injection.kind == Kind::memory && injection.at == 1;
            if (scenario_.doneWithoutMemory && notBegun && seen.files == before_ &&
                isReasonOf(injection.kind, seen.reason))
                return stated;
            if (seen.result.stated && injection.kind != Kind::memory && !isLegal(injection.way))
                return stated;
            return wrongSuccess;
        }
        if (isLegal(injection.way)) return wrongSuccess;  // nothing had failed
        // A saver notes the path first, as it is after a success.
        const bool notedPath = !scenario_.output.empty() && seen.result.record == expected_.result.results;
        if (seen.result.record != 0 && seen.result.record != missingRecord_ && !notedPath)
            return changedRecord;
        if (!seen.calls.struck) return wrongSuccess;
        const bool told = isReasonOf(injection.kind, seen.reason) ||
                          (scenario_.loadsPlugin && isReasonOfLoader(injection.kind, seen.reason));
        return told ? refused : noReason;
    }

    // Memory that is kept for later is taken once; a leak grows each time.
    bool keepsGrowing(const Plan& plan) {
        for (int turn = 0; turn < 3; ++turn) {
            int64_t blocks = 0;
            int files = 0;
            for (const Plan& each : {plan, Plan{}}) {
                const Outcome outcome = run(each, scenario_.run);
                blocks += outcome.moreBlocks;
                files += outcome.moreFiles;
            }
            if (blocks <= 0 && files <= 0) return false;
        }
        return true;
    }

    const Scenario& scenario_;
    Files before_;
    Outcome expected_;
    uint64_t missingRecord_ = 0;
    uint8_t fill_ = 0xa5;
    bool known_ = false;
};

int runChild(const Scenario& scenario, const std::string& progressPath, uint64_t most) {
    ProgressFile file(progressPath);
    Progress progress = file.load();
    Runner runner(scenario);
    const Calls calls = runner.learn();
    const char* difference = progress.next == 0 ? runner.differs() : nullptr;
    if (difference) {
        ++progress.verdicts[unsteady];
        report(scenario.name, difference, unsteady);
    }
    std::memcpy(progress.calls, calls.of, sizeof progress.calls);
    const std::vector<Injection> injections = injectionsFor(calls, most, scenario.takesLong);
    progress.total = injections.size();
    file.store(progress);
    while (progress.next < injections.size()) {
        progress.current = injections[static_cast<size_t>(progress.next)];
        ++progress.injected[static_cast<int>(progress.current.kind)];
        file.store(progress);
        limitTime(120);
        const Verdict verdict = runner.inject(progress.current);
        limitTime(0);
        ++progress.verdicts[verdict];
        if (!isGood(verdict)) report(scenario.name, nameOf(progress.current), verdict);
        ++progress.next;
        file.store(progress);
    }
    return 0;
}

// ---- All of them ----

struct Options {
    uint64_t most = UINT64_MAX;
    std::string only, without = "\n";
    int child = -1;
};

bool isChosen(const Scenario& scenario, const Options& options) {
    return scenario.name.find(options.only) != std::string::npos &&
           scenario.name.find(options.without) == std::string::npos;
}

int runAll(const std::vector<Scenario>& scenarios, const Options& options) {
    Progress sum;
    std::set<std::string> functions;
    uint64_t count = 0, findings = 0;
    for (size_t at = 0; at < scenarios.size(); ++at) {
        const Scenario& scenario = scenarios[at];
        if (!isChosen(scenario, options)) continue;
        std::error_code ignored;
        fs::remove("progress", ignored);
        Progress progress;
        for (;;) {
            const ChildEnd end = runAgain({"--child", std::to_string(at), "--most",
                                           std::to_string(options.most)});
            ProgressFile file("progress");
            progress = file.load();
            if (end == ChildEnd::normal) break;
            const int verdict = end == ChildEnd::outOfTime ? hang : crash;
            ++progress.verdicts[verdict];
            const bool underway = progress.total > 0;
            report(scenario.name, underway ? nameOf(progress.current) : "undisturbed", verdict);
            if (!underway) break;
            ++progress.next;
            file.store(progress);
        }
        functions.insert(scenario.function());
        ++count;
        uint64_t injections = 0, bad = 0;
        for (int kind = 0; kind < kKinds; ++kind) {
            sum.calls[kind] += progress.calls[kind];
            sum.injected[kind] += progress.injected[kind];
            injections += progress.injected[kind];
        }
        for (int verdict = 0; verdict < kVerdicts; ++verdict) {
            sum.verdicts[verdict] += progress.verdicts[verdict];
            if (!isGood(verdict)) bad += progress.verdicts[verdict];
        }
        findings += bad;
        std::printf("%s - %s: %llu failures, %llu findings\n", bad == 0 ? "ok" : "not ok",
                    scenario.name.c_str(), static_cast<unsigned long long>(injections),
                    static_cast<unsigned long long>(bad));
        std::fflush(stdout);
    }
    std::printf("\n%zu functions, %llu scenarios\nfailures:", functions.size(),
                static_cast<unsigned long long>(count));
    uint64_t all = 0;
    for (int kind = 0; kind < kKinds; ++kind) {
        std::printf(" %s %llu,", kKindNames[kind], static_cast<unsigned long long>(sum.injected[kind]));
        all += sum.injected[kind];
    }
    std::printf(" in all %llu\noutcome:", static_cast<unsigned long long>(all));
    for (int verdict = 0; verdict < kVerdicts; ++verdict)
        std::printf("%s %s %llu", verdict == 0 ? "" : ",", kVerdictNames[verdict],
                    static_cast<unsigned long long>(sum.verdicts[verdict]));
    std::printf("\n");
    return findings == 0 && all > 0 ? 0 : 1;
}

}  // namespace

int harness(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: fault_tests FOLDER [--most N] [--only TEXT] [--without TEXT]\n");
        return 2;
    }
    Options options;
    for (int at = 2; at + 1 < argc; at += 2) {
        const std::string name = argv[at], value = argv[at + 1];
        if (name == "--most") options.most = std::strtoull(value.c_str(), nullptr, 10);
        else if (name == "--only") options.only = value;
        else if (name == "--without") options.without = value;
        else if (name == "--child") options.child = std::atoi(value.c_str());
        else return 2;
    }
    rememberProgram(argv[0], argv[1]);
    fs::create_directories(argv[1]);
    fs::current_path(argv[1]);
    if (options.child < 0) makeInputs();
    const std::vector<Scenario> scenarios = makeScenarios();
    if (options.child < 0) return runAll(scenarios, options);
    return runChild(scenarios.at(static_cast<size_t>(options.child)), "progress", options.most);
}

}  // namespace ko::fault

int main(int argc, char** argv) { return ko::fault::harness(argc, argv); }
