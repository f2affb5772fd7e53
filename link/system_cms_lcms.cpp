// The system's colour management where the system has none of its own: lcms2.
#include <lcms2.h>
#include <lcms2_plugin.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <new>
#include <utility>

#include "frame/file.h"
#include "link/system_cms.h"

namespace ko::link::system {
namespace {

// Memory that lcms2 works in. It does not always look whether it was given any, so that what one
// profile or transform needs is reserved before it is made; should that not suffice, and no more
// be had, its work is left on the spot. All that it holds goes with this.
class Workspace {
public:
    explicit Workspace(size_t reserve) noexcept : reserved_(addChunk(reserve)) {
        static cmsPluginMemHandler handler = {
            {cmsPluginMagicNumber, 2060, cmsPluginMemHandlerSig, nullptr},
            allocate, release, reallocate, nullptr, nullptr, nullptr};
        if (reserved_) context_ = cmsCreateContext(&handler, this);
    }
    ~Workspace() {
        if (context_) cmsDeleteContext(context_);
        while (chunks_) std::free(std::exchange(chunks_, chunks_->next));
    }
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    explicit operator bool() const noexcept { return context_ != nullptr; }
    cmsContext context() const noexcept { return context_; }

    // Runs calls of lcms2, which may need memory of these. False when it ran out: what they hold
    // is then not to be touched again. work must own nothing, since it may not come to its end.
    template <class Work>
    [[nodiscard]] static bool run(std::initializer_list<Workspace*> spaces, Work&& work) {
        std::jmp_buf place;
        for (Workspace* space : spaces) space->wayOut_ = &place;
        const bool whole = setjmp(place) == 0;
        if (whole) work();
        for (Workspace* space : spaces) space->wayOut_ = nullptr;
        return whole;
    }

private:
    struct alignas(16) Chunk {
        Chunk* next;
        size_t size, used;  // bytes behind this
    };
    struct alignas(16) Header {
        size_t size;
    };

    bool addChunk(size_t size) noexcept {
        auto* chunk = static_cast<Chunk*>(std::malloc(sizeof(Chunk) + size));
        if (!chunk) return false;
        *chunk = {chunks_, size, 0};
        chunks_ = chunk;
        return true;
    }
    void* take(size_t size) noexcept {
        constexpr size_t kStep = size_t{1} << 20;
        const size_t whole = sizeof(Header) + (size + 15) / 16 * 16;
        if (chunks_->size - chunks_->used < whole && !addChunk(std::max(whole, kStep))) {
            if (wayOut_) std::longjmp(*wayOut_, 1);
            return nullptr;
        }
        std::byte* const place = reinterpret_cast<std::byte*>(chunks_ + 1) + chunks_->used;
        chunks_->used += whole;
        return new (place) Header{size} + 1;
    }

    // Nothing is reused: a transform keeps nearly all that its making has taken.
    static Workspace* of(cmsContext context) noexcept {
        return static_cast<Workspace*>(cmsGetContextUserData(context));
    }
    static void* allocate(cmsContext context, cmsUInt32Number size) noexcept {
        Workspace* const space = of(context);
        return space ? space->take(size) : std::malloc(size);  // the context's own record
    }
    static void release(cmsContext context, void* memory) noexcept {
        if (!of(context)) std::free(memory);
    }
    static void* reallocate(cmsContext context, void* memory, cmsUInt32Number size) noexcept {
        Workspace* const space = of(context);
        if (!space) return std::realloc(memory, size);
        void* const larger = space->take(size);
        if (!larger || !memory) return larger;
        const size_t before = (static_cast<const Header*>(memory) - 1)->size;
        return std::memcpy(larger, memory, std::min<size_t>(size, before));
    }

    Chunk* chunks_ = nullptr;
    std::jmp_buf* wayOut_ = nullptr;
    bool reserved_;
    cmsContext context_ = nullptr;
};

}  // namespace

struct Profile {
    explicit Profile(FileBytes content)
        : bytes(std::move(content)),
          space(std::min(kReserve + kPerByte * bytes.bytes().size(), kMostReserve)) {}

    // Measured: 0.3 MiB for the smallest profiles, and ten bytes for each of a file that is one
    // table of 8 bits: a copy of the file, and four of the table at 16 bits.
    static constexpr size_t kReserve = size_t{512} << 10, kPerByte = 11;
    static constexpr size_t kMostReserve = size_t{64} << 20;  // of a profile of 6 MiB

    FileBytes bytes;
    Workspace space;
    cmsHPROFILE handle = nullptr;
    bool sound = true;  // memory did not run out in it
};
struct Transform {
    explicit Transform(size_t reserve) noexcept : space(reserve) {}

    Workspace space;
    cmsHTRANSFORM handle = nullptr;
};

Profile* openProfile(const char* path) {
    FileReading reading = readWhole(path, kTableFiles);  // beside others who read it
    if (!reading) return nullptr;
    auto profile = std::make_unique<Profile>(std::move(reading.file));
    if (!profile->space) return nullptr;
    const auto bytes = profile->bytes.bytes();
    const bool opened = Workspace::run({&profile->space}, [&profile = *profile, bytes] {
        profile.handle = cmsOpenProfileFromMemTHR(profile.space.context(), bytes.data(),
                                                  static_cast<cmsUInt32Number>(bytes.size()));
    });
    return opened ? profile.release() : nullptr;
}

bool isValid(const Profile& profile) { return profile.handle != nullptr; }

// The profile's memory goes as a whole.
void closeProfile(Profile* profile) noexcept { delete profile; }

// Best quality: every colour goes through the profiles' own curves and tables, none through a
// grid sampled in advance; and nothing is cached, since no colour comes twice.
Transform* createTransform(Profile& source, Profile& destination, uint32_t intent) {
    constexpr size_t kReserve = size_t{64} << 10;  // the tables stay with their profiles
    auto transform = std::make_unique<Transform>(kReserve);
    if (!transform->space || !source.sound || !destination.sound) return nullptr;
    const auto formatOf = [](const Profile& profile) {  // of any colours: 16 bits a channel
        return cmsFormatterForColorspaceOfProfile(profile.handle, 2, FALSE);
    };
    const bool made = Workspace::run(
        {&source.space, &destination.space, &transform->space}, [&, &made = *transform] {
            made.handle = cmsCreateTransformTHR(
                made.space.context(), source.handle, formatOf(source), destination.handle,
                formatOf(destination), intent, cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE);
        });
    if (!made) source.sound = destination.sound = false;
    return made && transform->handle ? transform.release() : nullptr;
}

// A profile may have other colours than it is used for: channels that it has more are 0.
void translate(Transform& transform, const uint16_t (&input)[4], Colours, uint16_t (&output)[4],
               Colours) noexcept {
    uint16_t from[cmsMAXCHANNELS] = {}, to[cmsMAXCHANNELS] = {};
    std::copy_n(input, 4, from);
    cmsDoTransform(transform.handle, from, to, 1);
    std::copy_n(to, 4, output);
}

void deleteTransform(Transform* transform) noexcept { delete transform; }

}  // namespace ko::link::system
