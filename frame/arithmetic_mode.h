// The processor's floating-point settings while the library computes.
#pragma once

#include <cstdint>

#include <xmmintrin.h>

namespace ko {

// Rounds to nearest, keeps denormal numbers and traps nothing while it lives, whatever the host has
// set for this thread, and gives the host back what it had. Reading the settings is all that a
// call costs a host that has not changed them.
class ArithmeticMode {
public:
    ArithmeticMode() noexcept : sse_(_mm_getcsr()) {
        if ((sse_ & ~kSseFlags) != kSseDefault) _mm_setcsr(kSseDefault);
        if constexpr (kUsesX87) enterX87();
    }
    ~ArithmeticMode() {
        if constexpr (kUsesX87) leaveX87();
        if ((sse_ & ~kSseFlags) != kSseDefault) _mm_setcsr(sse_);
    }
    ArithmeticMode(const ArithmeticMode&) = delete;
    ArithmeticMode& operator=(const ArithmeticMode&) = delete;

private:
    static constexpr uint32_t kSseFlags = 0x3f;  // what has happened, not what shall happen
    static constexpr uint32_t kSseDefault = 0x1f80;

    // 32-bit code computes in SSE as well, but 64-bit integers become doubles through the x87.
    static constexpr bool kUsesX87 = sizeof(void*) == 4;
    static constexpr uint16_t kX87Read = 0x0e3f;  // rounding, masks, and more than single precision
    static constexpr uint16_t kX87Default = 0x037f;

    // Between functions the stack of the x87 is empty, so that only its settings are kept. They
    // are kept whole: a flag that a computation leaves would be a trap for a host that unmasks it.
    struct X87 {
        uint32_t words[7];
    };
    void enterX87() noexcept {
        asm volatile("fnstcw %0" : "=m"(control_));
        if (isDefault(control_)) return;
        asm volatile("fnstenv %0\n\tfldcw %1"
                     : "=m"(x87_) : "m"(kX87Default) : "st", "st(1)", "st(2)", "st(3)", "st(4)",
                       "st(5)", "st(6)", "st(7)");
    }
    void leaveX87() noexcept {
        if (isDefault(control_)) return;
        asm volatile("fldenv %0" : : "m"(x87_) : "st", "st(1)", "st(2)", "st(3)", "st(4)",
                       "st(5)", "st(6)", "st(7)");
    }
    static constexpr bool isDefault(uint16_t control) noexcept {
        return (control & kX87Read) == 0x023f;
    }

    uint32_t sse_;
    uint16_t control_ = kX87Default;
    X87 x87_;
};

}  // namespace ko
