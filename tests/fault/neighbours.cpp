// What other processes do to files and to the guard, and what the system refuses: killed savers,
// full disks, many at once, stopped and killed holders, forked children, a thousand loads.
//   neighbour_tests FOLDER PART...      (see main)
// Each check prints a line; the exit status is 0 when all went well.
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "kolink.h"
#include "tests/support/files.h"
#include "tests/support/profiles.h"

namespace {
namespace fs = std::filesystem;
using namespace ko::test;
using Clock = std::chrono::steady_clock;

int failures = 0;
void check(bool good, const std::string& what) {
    std::printf("%s - %s\n", good ? "ok" : "not ok", what.c_str());
    std::fflush(stdout);
    failures += !good;
}
std::string number(uint64_t value) { return std::to_string(value); }

// ---- Files of which every byte says which version they are ----

// One format: saving a version over a file, and loading it again, which tells the version, or -1
// when it is a mixture, or 0 when nothing could be loaded.
struct Format {
    const char* file;
    bool (*save)(const char* path, int version);
    int (*load)(const char* path);
};

// The versions 1 and 2 differ in every value.
template <class Values>
int versionOf(const Values& values, int (*versionOfOne)(uint32_t)) {
    int version = 0;
    for (const auto value : values) {
        const int one = versionOfOne(static_cast<uint32_t>(value));
        if (version != 0 && one != version) return -1;
        version = one;
    }
    return version;
}
int byLowBits(uint32_t value) { return (value & 3) == 1 ? 1 : (value & 3) == 2 ? 2 : -1; }

bool saveLink(const char* path, int version) {
    CmykProfile* profile = jKoCmykCreateProfile();
    if (!profile) return false;
    std::snprintf(profile->name, sizeof profile->name, "version %d", version);
    for (uint32_t& node : profile->grid) node = 0x01010101u * version;
    const bool done = jKoCmykSaveProfile(profile, path) == 1;
    jKoCmykReleaseProfile(profile);
    return done;
}
int loadLink(const char* path) {
    CmykProfile* profile = jKoCmykCreateProfile();
    if (!profile) return 0;
    int version = 0;
    if (jKoCmykLoadProfile(profile, path) == 1) {
        version = versionOf(profile->grid, byLowBits);
        if (version > 0 && profile->name != "version " + number(version)) version = -1;
    }
    jKoCmykReleaseProfile(profile);
    return version;
}

bool saveIcc(const char* path, int version) {
    IccProfile* profile = jIccCreate(4);
    if (!profile) return false;
    const uint32_t tags[] = {signature("B2A0"), signature("B2A1")};
    for (const uint32_t tag : tags) {
        IccLut* lut = hostLut(3, 4, 9, 1);
        std::memset(lut->clut, version, 9 * 9 * 9 * 4);
        jIccBindTag(profile, tag, lut);
    }
    jIccBindTag(profile, signature("desc"), hostText("version " + number(version)));
    // Lengths differ, so that the offsets of one version do not fit the other.
    jIccBindTag(profile, signature("cprt"), hostText(std::string(version * 333, 'c')));
    const bool done = jIccSaveProfile(profile, path) == 1;
    jIccRelease(profile);
    return done;
}
// Reads tag after tag, as a host does: each is of one moment, and the whole may be of two.
int loadIcc(const char* path) {
    IccProfile* profile = jIccLoadHeader(path);
    if (!profile) return 0;
    int version = 0;
    if (const auto* lut = static_cast<IccLut*>(jIccLoadTag(profile, signature("B2A1")))) {
        const auto* bytes = static_cast<const uint8_t*>(lut->clut);
        version = versionOf(std::vector<uint8_t>(bytes, bytes + 9 * 9 * 9 * 4), byLowBits);
    }
    jIccRelease(profile);
    return version;
}

bool saveDevice(const char* path, int version) {
    DeviceProfile* device = jKoDevsCreateProfile();
    if (!device) return false;
    for (uint32_t& lab : device->labGrid) lab = 0x010101u * version;
    for (uint32_t& inks : device->toCmyk0) inks = 0x01010101u * version;
    for (uint32_t& inks : device->toCmyk1) inks = 0x01010101u * version;
    const bool done = jKoDevsSaveProfile(device, path) == 1;
    jKoDevsReleaseProfile(device);
    return done;
}

template <int Channels, int32_t (*Save)(ToneCurve*, const char*)>
bool saveTone(const char* path, int version) {
    ToneCurve* curve = jKoToneCreateToneCurve(Channels);
    if (!curve) return false;
    for (int channel = 0; channel < Channels; ++channel)
        for (int x = 16; x < 255; x += 16) {
            curve->table[channel * 512 + x] = 1;
            curve->table[channel * 512 + 256 + x] = static_cast<int16_t>(100 + version);
        }
    const bool done = Save(curve, path) == 1;
    jKoToneReleaseToneCurve(curve);
    return done;
}
template <int Channels, int32_t (*Load)(ToneCurve*, const char*)>
int loadTone(const char* path) {
    ToneCurve* curve = jKoToneCreateToneCurve(Channels);
    if (!curve) return 0;
    std::vector<int> values;
    if (Load(curve, path) == 1)
        for (int channel = 0; channel < Channels; ++channel)
            for (int x = 16; x < 255; x += 16)
                values.push_back(curve->table[channel * 512 + 256 + x]);
    jKoToneReleaseToneCurve(curve);
    return versionOf(values, [](uint32_t value) { return value == 101 ? 1 : value == 102 ? 2 : -1; });
}

int32_t saveDccOf(ToneCurve* curve, const char* path) {
    DccSettings settings{600, 600, 200, 30, curve};
    return jKoToneSaveDcc(&settings, path);
}
int32_t loadDccOf(ToneCurve* curve, const char* path) {
    DccSettings settings{0, 0, 0, 0, curve};
    return jKoToneLoadDcc(&settings, path);
}

bool saveSet(const char* path, int version) {
    CalibCurveSet* set = jKoCalibCreateCurve(4, 100, 200);
    if (!set) return false;
    for (int channel = 0; channel < 4; ++channel)
        for (int x = 5; x < 100; x += 5)
            jKoCalibSetToneValue(set, channel, static_cast<float>(x), static_cast<float>(100 + version));
    const bool done = jKoCalibSaveCurve(set, path) == 1;
    jKoCalibReleaseCurve(set);
    return done;
}
int loadSet(const char* path) {
    CalibCurveSet* set = jKoCalibLoadCurve(path);
    if (!set) return 0;
    std::vector<int> values;
    for (int channel = 0; channel < set->channelCount; ++channel)
        for (int x = 5; x < 100; x += 5)
            values.push_back(static_cast<int>(jKoCalibGetToneValue(set, channel, static_cast<float>(x))));
    const bool whole = set->channelCount == 4;
    jKoCalibReleaseCurve(set);
    return whole ? versionOf(values, [](uint32_t value) { return value == 101 ? 1 : value == 102 ? 2 : -1; })
                 : -1;
}

template <class Table, Table* (*Create)(), int32_t (*Release)(Table*), int32_t (*Save)(const Table*, const char*)>
bool saveTable(const char* path, int version) {
    Table* table = Create();
    if (!table) return false;
    for (uint32_t& node : table->nodes) node = (sizeof(Table) < 20000 ? 0x010101u : 0x01010101u) * version;
    const bool done = Save(table, path) == 1;
    Release(table);
    return done;
}
template <class Table, Table* (*Create)(), int32_t (*Release)(Table*), int32_t (*Load)(Table*, const char*)>
int loadTable(const char* path) {
    Table* table = Create();
    if (!table) return 0;
    const int version = Load(table, path) == 1 ? versionOf(table->nodes, byLowBits) : 0;
    Release(table);
    return version;
}

// What one saver writes is read by the loader of its kind.
const Format kFormats[] = {
    {"link.icc", saveLink, loadLink},
    {"press.icc", saveIcc, loadIcc},
    {"device.icc", saveDevice, nullptr},
    {"curve.bkc", saveTone<1, jKoToneSaveBkcCurve>, loadTone<1, jKoToneLoadBkcCurve>},
    {"curve.tnc", saveTone<4, jKoToneSaveCmykToneCurve>, loadTone<4, jKoToneLoadCmykToneCurve>},
    {"printer.dcc", saveTone<6, saveDccOf>, loadTone<6, loadDccOf>},
    {"set.clb", saveSet, loadSet},
    {"cmyk.txt",
     saveTable<CmykLut, jKoCmykCreateCmykLut, jKoCmykReleaseCmykLut, jKoCmykSaveCmykLut>,
     loadTable<CmykLut, jKoCmykCreateCmykLut, jKoCmykReleaseCmykLut, jKoCmykLoadCmykLut>},
    {"rgb.txt", saveTable<RgbLut, jKoRgbCreateRgbLut, jKoRgbReleaseRgbLut, jKoRgbSaveRgbLut>,
     loadTable<RgbLut, jKoRgbCreateRgbLut, jKoRgbReleaseRgbLut, jKoRgbLoadRgbLut>},
};

// The bytes of each version, with the time of day, which is in profiles, left out.
Bytes withoutTime(Bytes bytes) {
    if (bytes.size() >= 128 && std::memcmp(&bytes[36], "acsp", 4) == 0)
        std::fill(bytes.begin() + 24, bytes.begin() + 36, uint8_t{0});
    return bytes;
}
std::array<Bytes, 2> versionsOf(const Format& format) {
    std::array<Bytes, 2> versions;
    for (int version = 1; version <= 2; ++version) {
        if (!format.save(format.file, version)) std::exit(2);
        versions[version - 1] = withoutTime(readFile(format.file));
    }
    return versions;
}
size_t filesHere() {
    size_t count = 0;
    for (const auto& entry : fs::directory_iterator(".")) {
        (void)entry;
        ++count;
    }
    return count;
}

template <class Work>
pid_t forked(Work&& work) {
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child != 0) return child;
    work();
    std::_Exit(0);
}
int statusOf(pid_t child) {
    int status;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {}
    return status;
}
bool endedWell(pid_t child) {
    const int status = statusOf(child);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
// Whether a child ends well within some seconds; ends it when not.
bool endsWithin(pid_t child, double seconds) {
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    int status;
    while (Clock::now() < end) {
        if (::waitpid(child, &status, WNOHANG) == child)
            return WIFEXITED(status) && WEXITSTATUS(status) == 0;
        ::usleep(2000);
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, &status, 0);
    return false;
}

// ---- Savers that are killed ----

void killSavers(int kills) {
    fs::create_directory("kills");
    fs::current_path("kills");
    std::mt19937 random(1);
    int whole = 0, killed = 0;
    size_t leftOvers = 0;
    const int formats = static_cast<int>(std::size(kFormats));
    for (int at = 0; at < formats; ++at) {
        const Format& format = kFormats[at];
        const auto versions = versionsOf(format);
        const auto began = Clock::now();
        format.save(format.file, 1);
        const double once = std::chrono::duration<double>(Clock::now() - began).count();
        for (int turn = at; turn < kills; turn += formats) {
            const pid_t child = forked([&] {
                for (int version = 1;; version = 3 - version) format.save(format.file, version);
            });
            // Anywhere in the first few savings.
            ::usleep(static_cast<useconds_t>(once * 3e3 * static_cast<double>(random() % 1000)) + 1);
            ::kill(child, SIGKILL);
            statusOf(child);
            ++killed;
            const Bytes left = withoutTime(readFile(format.file));
            whole += left == versions[0] || left == versions[1];
            leftOvers += filesHere() - 1;
            format.save(format.file, 1);
            if (filesHere() != 1) check(false, std::string(format.file) + ": a left-over outlives the next saving");
        }
        fs::remove(format.file);
    }
    check(whole == killed, number(whole) + " of " + number(killed) +
                               " killed savings left a whole file; " + number(leftOvers) +
                               " left-overs, which the next saving removed");
    fs::current_path("..");
}

// ---- Full disks ----

void fillUp(const char* how, const char* file, const Format& format, const Bytes& old, int& runs) {
    errno = 0;
    const bool done = format.save(format.file, 2);
    const int reason = errno;
    ++runs;
    const Bytes left = withoutTime(readFile(format.file));
    if (done || left != old || filesHere() != 1 || (reason != EFBIG && reason != ENOSPC))
        check(false, std::string(file) + ' ' + how + ": " + (done ? "said to be saved, " : "") +
                         (left != old ? "the old file is damaged, " : "") + "reason " + number(reason));
}

std::string smallDisk;

void fullDisks(bool all) {
    fs::create_directory("full");
    fs::current_path("full");
    std::signal(SIGXFSZ, SIG_IGN);
    int runs = 0;
    const int before = failures;
    for (const Format& format : kFormats) {
        const auto versions = versionsOf(format);
        format.save(format.file, 1);
        const size_t size = versions[1].size(), steps = all ? 40 : 5;
        for (size_t step = 0; step < steps; ++step) {
            // In a child, since a limit stays.
            const pid_t child = forked([&] {
                failures = 0;
                const rlimit limit{size * step / steps, RLIM_INFINITY};
                ::setrlimit(RLIMIT_FSIZE, &limit);
                int ignored = 0;
                fillUp("with a limit", format.file, format, versions[0], ignored);
                std::fflush(stdout);
                std::_Exit(failures > 0);
            });
            if (!endedWell(child)) ++failures;
            ++runs;
        }
        fs::remove(format.file);
    }
    check(failures == before, number(runs) + " savings beyond the size that files may have");

    // A small file system, where that is allowed.
    fs::create_directory("small");
    std::atexit([] { ::umount2(smallDisk.c_str(), MNT_DETACH); });
    smallDisk = fs::absolute("small").string();
    if (::mount("none", "small", "tmpfs", 0, "size=16m") != 0) {
        std::printf("# no file system can be mounted here: %s\n", std::strerror(errno));
    } else {
        fs::current_path("small");
        const int beforeSmall = failures;
        runs = 0;
        for (const Format& format : kFormats) {
            const auto versions = versionsOf(format);
            format.save(format.file, 1);
            // All the room but some of what a second file takes.
            for (const size_t room : {size_t{0}, versions[1].size() / 2}) {
                {
                    std::ofstream ballast("ballast", std::ios::binary);
                    const Bytes block(4096);
                    while (ballast && fs::space(".").available > room + 4096)
                        ballast.write(reinterpret_cast<const char*>(block.data()), 4096).flush();
                }
                if (fs::space(".").available > versions[1].size()) {
                    fs::remove("ballast");
                    continue;  // smaller than a page
                }
                errno = 0;
                const bool done = format.save(format.file, 2);
                const int reason = errno;
                const Bytes left = withoutTime(readFile(format.file));
                ++runs;
                if (done || left != versions[0] || filesHere() != 2 || reason != ENOSPC)
                    check(false, std::string(format.file) + " on a full disk: " +
                                     (done ? "said to be saved, " : "") +
                                     (left != versions[0] ? "the old file is damaged, " : "") +
                                     "reason " + number(reason));
                fs::remove("ballast");
            }
            fs::remove(format.file);
        }
        check(failures == beforeSmall && runs > 0, number(runs) + " savings on a full disk");
        fs::current_path("..");
        ::umount2("small", MNT_DETACH);
    }
    fs::current_path("..");
}

// ---- Many at once ----

struct Counts {
    std::atomic<uint64_t> loads, mixed, missing, saves, unsaved;
    std::atomic<uint64_t> mixedOf[std::size(kFormats)];
};

void manyAtOnce(double seconds, bool differentFolders) {
    fs::create_directory("many");
    fs::current_path("many");
    auto* counts = static_cast<Counts*>(::mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE,
                                               MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    for (const Format& format : kFormats) format.save(format.file, 1);
    std::vector<pid_t> children;
    for (int process = 0; process < 4; ++process) {
        const std::string folder = fs::absolute("../runtime" + number(process)).string();
        ::mkdir(folder.c_str(), 0700);
        children.push_back(forked([&] {
            if (differentFolders) {
                // The library reads the environment when it is loaded.
                ::setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
                ::setenv("TMPDIR", folder.c_str(), 1);
            }
            const auto end = Clock::now() + std::chrono::duration<double>(seconds);
            std::vector<std::thread> threads;
            for (int thread = 0; thread < 4; ++thread)
                threads.emplace_back([=] {
                    std::mt19937 random(static_cast<uint32_t>(process * 4 + thread));
                    while (Clock::now() < end) {
                        const Format& format = kFormats[random() % std::size(kFormats)];
                        if (!format.load || random() % 4 == 0) {
                            counts->unsaved += !format.save(format.file, 1 + random() % 2);
                            ++counts->saves;
                        } else {
                            const int version = format.load(format.file);
                            counts->mixed += version < 0;
                            counts->mixedOf[&format - kFormats] += version < 0;
                            counts->missing += version == 0;
                            ++counts->loads;
                        }
                    }
                });
            for (std::thread& thread : threads) thread.join();
        }));
    }
    bool ended = true;
    for (const pid_t child : children) ended = endsWithin(child, seconds + 60) && ended;
    check(ended && counts->mixed == 0 && counts->missing == 0 && counts->unsaved == 0 &&
              counts->loads > 0 && filesHere() == std::size(kFormats),
          std::string("four processes of four threads") +
              (differentFolders ? " with runtime folders of their own" : "") + ": " +
              number(counts->loads) + " loads, " + number(counts->mixed) + " mixed, " +
              number(counts->missing) + " failed; " + number(counts->saves) + " savings, " +
              number(counts->unsaved) + " failed");
    for (size_t at = 0; at < std::size(kFormats); ++at)
        if (counts->mixedOf[at] > 0)
            std::printf("# %s: %s mixed\n", kFormats[at].file, number(counts->mixedOf[at]).c_str());
    ::munmap(counts, sizeof *counts);
    fs::current_path("..");
}

// ---- Who holds the guard ----

// The file behind the guard.
std::string guardPath() {
    for (const char* place : {"/tmp", "/var/tmp", "/dev/shm"}) {
        const std::string path =
            std::string(place) + "/.kolink-" + number(::geteuid()) + "/_KOLINK_MUTEX";
        if (fs::exists(path)) return path;
    }
    return {};
}

// A child that holds the guard until it is ended.
pid_t holder(const std::string& guard) {
    int ready[2];
    if (::pipe(ready) != 0) std::exit(2);
    const pid_t child = forked([&] {
        const int file = ::open(guard.c_str(), O_RDWR);
        if (file < 0 || ::flock(file, LOCK_EX) != 0) std::_Exit(1);
        if (::write(ready[1], "1", 1) != 1) std::_Exit(1);
        ::pause();
    });
    ::close(ready[1]);
    char byte;
    if (::read(ready[0], &byte, 1) != 1) std::exit(2);
    ::close(ready[0]);
    return child;
}

void holders() {
    fs::create_directory("guard");
    fs::current_path("guard");
    const Format& format = kFormats[1];
    format.save(format.file, 1);
    const std::string guard = guardPath();
    check(!guard.empty(), "the guard is a file");
    if (guard.empty()) return;
    struct stat about;
    check(::stat(guard.c_str(), &about) == 0 && about.st_uid == ::getuid() &&
              (about.st_mode & 077) == 0 &&
              ::stat(fs::path(guard).parent_path().c_str(), &about) == 0 &&
              about.st_uid == ::getuid() && (about.st_mode & 022) == 0,
          "it is the user's own, in a folder of the user");
    const auto loading = [&] {
        return forked([&] { std::_Exit(format.load(format.file) == 1 ? 0 : 1); });
    };
    {
        const pid_t stopped = holder(guard);
        ::kill(stopped, SIGSTOP);
        const pid_t waiting = loading();
        ::usleep(700000);
        int status;
        check(::waitpid(waiting, &status, WNOHANG) == 0, "a load waits for a holder that is stopped");
        ::kill(stopped, SIGKILL);
        check(endsWithin(waiting, 20), "and goes on when the holder is killed");
        statusOf(stopped);
    }
    {
        // A process that forks while its threads work, then dies; its children live on.
        int ready[2];
        if (::pipe(ready) != 0) std::exit(2);
        const pid_t parent = forked([&] {
            std::thread([&] {
                for (int version = 1;; version = 3 - version) format.save(format.file, version);
            }).detach();
            for (int child = 0; child < 200; ++child)
                if (::fork() == 0) {
                    ::close(ready[0]);
                    ::close(ready[1]);
                    ::sleep(20);
                    std::_Exit(0);
                }
            if (::write(ready[1], "1", 1) != 1) std::_Exit(1);
            ::pause();
        });
        char byte;
        const bool forkedAll = ::read(ready[0], &byte, 1) == 1;
        ::kill(parent, SIGKILL);
        statusOf(parent);
        const auto began = Clock::now();
        const bool loaded = endsWithin(forked([&] { std::_Exit(format.load(format.file) > 0 ? 0 : 1); }), 15);
        const double took = std::chrono::duration<double>(Clock::now() - began).count();
        check(forkedAll && loaded && took < 15, "children forked while it was held do not hold the guard");
        ::close(ready[0]);
        ::close(ready[1]);
    }
    {
        // In the child the library works on, however the parent stood.
        std::atomic<bool> enough = false;
        std::thread worker([&] {
            while (!enough) (void)format.load(format.file);
        });
        int good = 0;
        for (int turn = 0; turn < 50; ++turn)
            good += endsWithin(forked([&] { std::_Exit(format.load(format.file) > 0 ? 0 : 1); }), 20);
        enough = true;
        worker.join();
        check(good == 50, number(good) + " of 50 children loaded, forked while the guard was held");
    }
    fs::current_path("..");
}

// ---- Loading the library itself ----

void thousandLoads(int loads) {
    Dl_info here;
    if (::dladdr(reinterpret_cast<const void*>(&jMemAlloc), &here) == 0) std::exit(2);
    // Another file of the same content is another library, which comes and goes.
    fs::copy_file(here.dli_fname, "copy.so", fs::copy_options::overwrite_existing);
    const std::string path = fs::absolute("copy.so").string();
    kFormats[6].save("loaded.clb", 1);
    size_t early = 0, earlyPages = 0, late = 0, latePages = 0;
    const auto pages = [] {
        size_t size = 0;
        std::ifstream("/proc/self/statm") >> size;
        return size;
    };
    bool good = true;
    for (int turn = 0; turn < loads; ++turn) {
        void* library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        good = good && library;
        if (!library) break;
        const auto load = reinterpret_cast<CalibCurveSet* (*)(const char*)>(
            ::dlsym(library, "jKoCalibLoadCurve"));
        const auto release = reinterpret_cast<int32_t (*)(CalibCurveSet*)>(
            ::dlsym(library, "jKoCalibReleaseCurve"));
        CalibCurveSet* set = load("loaded.clb");
        // A failure inside, too: it throws where memory is short or a file is not there.
        good = good && set && release(set) == 1 && !load("nothing.there");
        std::thread([&] {
            CalibCurveSet* other = load("loaded.clb");
            good = good && other && release(other) == 1;
        }).join();
        ::dlclose(library);
        // What the system's loader keeps for itself it has after some twenty rounds.
        if (turn == loads / 3) early = ::mallinfo2().uordblks, earlyPages = pages();
    }
    late = ::mallinfo2().uordblks, latePages = pages();
    good = good && ::dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD) == nullptr;
    check(good && late <= early + 1024 && latePages <= earlyPages + 16,
          number(loads) + " times loaded and unloaded; memory grew by " +
              number(late > early ? late - early : 0) + " bytes, the address space by " +
              number(latePages > earlyPages ? latePages - earlyPages : 0) + " pages");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: neighbour_tests FOLDER kills N|full|few|mixed SECONDS|"
                             "different SECONDS|holders|loads N ...\n");
        return 2;
    }
    fs::remove_all(argv[1]);
    fs::create_directories(argv[1]);
    fs::current_path(argv[1]);
    for (int at = 2; at < argc; ++at) {
        const std::string what = argv[at];
        const auto amount = [&] { return at + 1 < argc ? std::atof(argv[++at]) : 0; };
        if (what == "kills") killSavers(static_cast<int>(amount()));
        else if (what == "full") fullDisks(true);
        else if (what == "few") fullDisks(false);
        else if (what == "mixed") manyAtOnce(amount(), false);
        else if (what == "different") manyAtOnce(amount(), true);
        else if (what == "holders") holders();
        else if (what == "loads") thousandLoads(static_cast<int>(amount()));
        else return 2;
    }
    return failures > 0;
}
