// Makes allocations of the library fail: those of the calling thread, from the k-th one on.
#pragma once

namespace ko::test {

class ShortMemory {
public:
    explicit ShortMemory(long successes);
    ~ShortMemory();
    ShortMemory(const ShortMemory&) = delete;
    bool wasShort() const;  // whether an allocation has failed
};

// Bytes that this process has allocated.
long long allocatedBytes();

// The library once more, from another file, as often as a test has time for.
extern const int kLoads;
extern const bool kLoadingIsShort;  // whether it is, too, where memory is
void* loadLibrary(const char* path);
void* findFunction(void* library, const char* name);
void unloadLibrary(void* library);

}  // namespace ko::test
