#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>

#include "precise/profile.h"
#include "quality/file_check.h"
#include "tests/support/profiles.h"

namespace ko::test {
namespace {

using quality::checkIcc;
using quality::Fault;
using quality::Level;

Bytes text4(std::string_view ascii) {  // multiLocalizedUnicodeType with one text
    Bytes bytes = element("mluc");
    append32(bytes, 1);
    append32(bytes, 12);
    append(bytes, "enUS");
    append32(bytes, static_cast<uint32_t>(2 * ascii.size()));
    append32(bytes, 28);
    for (const char c : ascii) append16(bytes, static_cast<uint8_t>(c));
    return bytes;
}

Bytes withHeader(std::string_view deviceClass, std::string_view space, std::string_view connection, int version) {
    Bytes header = profileHeader(deviceClass, space, connection);
    put32(header, 8, version == 4 ? 0x04400000 : 0x02400000);
    for (const auto& [at, value] : {std::pair{24, 2026}, {26, 11}, {28, 22}, {30, 1}, {32, 2}, {34, 3}}) {
        header[static_cast<size_t>(at)] = static_cast<uint8_t>(value >> 8);
        header[static_cast<size_t>(at) + 1] = static_cast<uint8_t>(value);
    }
    put32(header, 36, 0x61637370);
    put32(header, 68, 0xf6d6);
    put32(header, 72, 0x10000);
    put32(header, 76, 0xd32d);
    return header;
}

const Bytes kWhite = xyzElement(0xf6d6, 0x10000, 0xd32d);
const Bytes kRamp = curveElement({0, 30000, 65535});

std::vector<Tag> displayTags() {
    return {{"desc", descriptionElement("A display")}, {"cprt", textElement("Nobody")}, {"wtpt", kWhite},
            {"rXYZ", kWhite}, {"gXYZ", kWhite}, {"bXYZ", kWhite}, {"rTRC", kRamp}, {"gTRC", kRamp}, {"bTRC", kRamp}};
}
std::vector<Tag> displayTags4() {
    Bytes parametric = element("para");
    append32(parametric, 0);
    append32(parametric, 0x20000);
    Bytes adapted = element("sf32");
    for (int at = 0; at < 9; ++at) append32(adapted, at % 4 == 0 ? 0x10000 : 0);
    return {{"desc", text4("A display")}, {"cprt", text4("Nobody")}, {"wtpt", kWhite}, {"chad", adapted},
            {"rXYZ", kWhite}, {"gXYZ", kWhite}, {"bXYZ", kWhite}, {"rTRC", parametric}, {"gTRC", kRamp}, {"bTRC", kRamp}};
}
Bytes withId(Bytes profile) {
    const auto id = precise::profileId(profile);
    std::copy(id.begin(), id.end(), profile.begin() + 84);
    return profile;
}
Bytes display() { return profileBytes(displayTags(), withHeader("mntr", "RGB ", "XYZ ", 2)); }
Bytes display4() { return withId(profileBytes(displayTags4(), withHeader("mntr", "RGB ", "XYZ ", 4))); }

Bytes table(int in, int out) { return LutElement{static_cast<uint8_t>(in), static_cast<uint8_t>(out), 2, true}.bytes(); }

Bytes sequence() {
    Bytes bytes = element("pseq");
    append32(bytes, 1);
    bytes.resize(bytes.size() + 20);
    for (int text = 0; text < 2; ++text) {
        const Bytes description = descriptionElement("One");
        bytes.insert(bytes.end(), description.begin(), description.end());
    }
    return bytes;
}
std::vector<Tag> linkTags() {
    return {{"desc", descriptionElement("A link")}, {"cprt", textElement("Nobody")},
            {"pseq", sequence()}, {"A2B0", table(4, 4)}};
}
Bytes linkFrom(const std::vector<Tag>& tags) { return profileBytes(tags, withHeader("link", "CMYK", "CMYK", 2)); }

std::vector<Tag> pressTags() {
    return {{"desc", descriptionElement("A press")}, {"cprt", textElement("Nobody")}, {"wtpt", kWhite},
            {"A2B0", table(4, 3)}, {"A2B1", table(4, 3)}, {"A2B2", table(4, 3)}, {"B2A0", table(3, 4)},
            {"B2A1", table(3, 4)}, {"B2A2", table(3, 4)}, {"gamt", table(3, 1)}};
}
Bytes pressFrom(const std::vector<Tag>& tags) { return profileBytes(tags, withHeader("prtr", "CMYK", "Lab ", 2)); }

// A table of version 4 with B curves alone, or with a grid and A curves as well.
Bytes newTable(int in, int out, bool grid) {
    Bytes bytes = element("mAB ");
    bytes.push_back(static_cast<uint8_t>(in));
    bytes.push_back(static_cast<uint8_t>(out));
    append16(bytes, 0);
    const auto identities = [&](int count) { for (int at = 0; at < count; ++at) { append(bytes, "curv"); append32(bytes, 0); append32(bytes, 0); } };
    const uint32_t b = 32, clut = b + 12 * static_cast<uint32_t>(out);
    uint32_t nodes = 1;
    for (int at = 0; at < in; ++at) nodes *= 2;
    const uint32_t a = clut + 20 + (nodes * static_cast<uint32_t>(out) + 3) / 4 * 4;
    for (const uint32_t part : {b, 0u, 0u, grid ? clut : 0, grid ? a : 0}) append32(bytes, part);
    identities(out);
    if (!grid) return bytes;
    for (int at = 0; at < 16; ++at) bytes.push_back(at < in ? 2 : 0);
    append32(bytes, 0x01000000);
    bytes.resize(a);
    identities(in);
    return bytes;
}

std::vector<std::string> rulesOf(const Bytes& profile, Level worst = Level::note) {
    std::vector<std::string> rules;
    for (const Fault& fault : checkIcc(profile))
        if (fault.level <= worst) rules.push_back(fault.rule);
    return rules;
}

TEST(IccCheck, FindsNothingInSoundProfiles) {
    for (const Bytes& profile : {display(), display4(), linkFrom(linkTags()), pressFrom(pressTags())})
        EXPECT_EQ(rulesOf(profile), std::vector<std::string>{});
}

// One file a rule, which breaks that rule and no other.
struct Case {
    const char* rule;
    Level level;
    std::function<Bytes()> file;
};

Bytes changed(Bytes bytes, size_t at, uint32_t word) {
    put32(bytes, at, word);
    return bytes;
}
size_t entryOf(const Bytes& profile, size_t at) { (void)profile; return 132 + 12 * at; }

std::vector<Tag> with(std::vector<Tag> tags, std::string_view signature, const Bytes& bytes) {
    for (Tag& tag : tags)
        if (tag.signature == signature) tag.element = bytes;
    return tags;
}
std::vector<Tag> without(std::vector<Tag> tags, std::string_view signature) {
    std::erase_if(tags, [&](const Tag& tag) { return tag.signature == signature; });
    return tags;
}
Bytes cut(Bytes bytes, size_t count) {
    bytes.resize(bytes.size() - count);
    return bytes;
}
Bytes displayWith(std::string_view signature, const Bytes& bytes) {
    return profileBytes(with(displayTags(), signature, bytes), withHeader("mntr", "RGB ", "XYZ ", 2));
}
Bytes display4With(std::string_view signature, const Bytes& bytes) {
    return withId(profileBytes(with(displayTags4(), signature, bytes), withHeader("mntr", "RGB ", "XYZ ", 4)));
}
Bytes inputWith(const Bytes& newTableBytes) {
    return withId(profileBytes({{"desc", text4("A camera")}, {"cprt", text4("Nobody")}, {"wtpt", kWhite}, {"A2B0", newTableBytes}},
                               withHeader("scnr", "RGB ", "Lab ", 4)));
}
Bytes patched(Bytes bytes, size_t at, uint8_t value) {
    bytes[at] = value;
    return bytes;
}

const Case kCases[] = {
    {"length", Level::error, [] { return Bytes(100, 0); }},
    {"signature", Level::error, [] { return changed(display(), 36, 0); }},
    {"size", Level::error, [] { return changed(display(), 0, static_cast<uint32_t>(display().size()) + 4); }},
    {"size", Level::error, [] { Bytes bytes = display(); bytes.resize(bytes.size() + 4); return bytes; }},
    {"size-multiple", Level::error, [] {
         Bytes bytes = display4();
         bytes.push_back(0);
         return withId(changed(bytes, 0, static_cast<uint32_t>(bytes.size())));
     }},
    {"version", Level::warning, [] { return changed(display(), 8, 0x02500000); }},
    {"version-reserved", Level::warning, [] { return changed(display(), 8, 0x02400001); }},
    {"class", Level::error, [] { return changed(display(), 12, 0x78797a20); }},
    {"colour-space", Level::error, [] { return changed(linkFrom(linkTags()), 16, 0x58585858); }},
    {"connection-space", Level::error, [] { return changed(display(), 20, 0x52474220); }},
    {"date", Level::warning, [] { return changed(display(), 24, 0x07ea000d); }},
    {"platform", Level::warning, [] { return changed(display(), 40, 0x41424344); }},
    {"flags", Level::warning, [] { return changed(display(), 44, 4); }},
    {"attributes", Level::warning, [] { return changed(display(), 60, 16); }},
    {"intent", Level::error, [] { return changed(display(), 64, 4); }},
    {"illuminant", Level::error, [] { return changed(display(), 68, 0xf333); }},
    {"illuminant", Level::warning, [] { return changed(display(), 68, 0xf6d5); }},
    {"header-reserved", Level::warning, [] { return changed(display(), 100, 1); }},
    {"id", Level::error, [] { return changed(display4(), 84, 1); }},
    {"id-missing", Level::note, [] { Bytes bytes = display4(); std::fill_n(bytes.begin() + 84, 16, uint8_t{0}); return bytes; }},
    {"tag-count", Level::error, [] { return changed(linkFrom(linkTags()), 128, 100000000); }},
    {"tag-twice", Level::error, [] { auto tags = displayTags(); tags.push_back({"gTRC", kRamp}); return profileBytes(tags, withHeader("mntr", "RGB ", "XYZ ", 2)); }},
    {"tag-bounds", Level::error, [] { const Bytes bytes = display(); return changed(bytes, entryOf(bytes, 8) + 8, 1000000); }},
    {"tag-bounds", Level::error, [] { const Bytes bytes = display(); return changed(bytes, entryOf(bytes, 8) + 4, 4); }},
    {"tag-size", Level::error, [] { const Bytes bytes = display(); return changed(bytes, entryOf(bytes, 8) + 8, 4); }},
    {"tag-missing", Level::error, [] { return profileBytes(without(displayTags(), "cprt"), withHeader("mntr", "RGB ", "XYZ ", 2)); }},
    {"tag-missing", Level::error, [] { return linkFrom(without(linkTags(), "pseq")); }},
    {"tag-missing", Level::warning, [] { return pressFrom(without(pressTags(), "gamt")); }},
    {"no-conversion", Level::error, [] { return profileBytes(without(displayTags(), "bTRC"), withHeader("mntr", "RGB ", "XYZ ", 2)); }},
    {"type", Level::error, [] { return displayWith("wtpt", kRamp); }},
    {"type-version", Level::error, [] { return displayWith("desc", text4("New")); }},
    {"type-reserved", Level::warning, [] { return displayWith("wtpt", changed(kWhite, 4, 1)); }},
    {"text-end", Level::error, [] { return displayWith("cprt", element("text", {'N', 'o'})); }},
    {"text-ascii", Level::warning, [] { return displayWith("cprt", textElement("\xa9 Nobody")); }},
    {"description", Level::error, [] { return displayWith("desc", changed(descriptionElement("A"), 8, 1000)); }},
    {"description", Level::warning, [] { return displayWith("desc", cut(descriptionElement("A"), 40)); }},
    {"texts", Level::error, [] { return display4With("desc", changed(text4("A"), 20, 100)); }},
    {"texts", Level::error, [] { return display4With("desc", changed(text4("A"), 12, 16)); }},
    {"xyz-size", Level::error, [] { return displayWith("rXYZ", cut(kWhite, 4)); }},
    {"white", Level::error, [] { return displayWith("wtpt", xyzElement(0, 0, 0)); }},
    {"curve-size", Level::error, [] { return displayWith("rTRC", changed(kRamp, 8, 1000)); }},
    {"curve-flat", Level::warning, [] { return displayWith("rTRC", curveElement({65535, 30000, 0})); }},
    {"curve-turns", Level::note, [] { return displayWith("rTRC", curveElement({0, 40000, 30000, 65535})); }},
    {"curve-form", Level::error, [] { return display4With("rTRC", changed(element("para", Bytes(8, 0)), 8, 0x00090000)); }},
    {"matrix-size", Level::error, [] { return display4With("chad", element("sf32", Bytes(32, 0))); }},
    {"channels", Level::error, [] { return linkFrom(with(linkTags(), "A2B0", table(3, 4))); }},
    {"grid", Level::error, [] { return linkFrom(with(linkTags(), "A2B0", patched(table(4, 4), 10, 1))); }},
    {"matrix", Level::error, [] { return linkFrom(with(linkTags(), "A2B0", changed(table(4, 4), 12, 0x8000))); }},
    {"table-entries", Level::error, [] { return linkFrom(with(linkTags(), "A2B0", changed(table(4, 4), 48, 0x00010100))); }},
    {"table-size", Level::error, [] { return linkFrom(with(linkTags(), "A2B0", cut(table(4, 4), 8))); }},
    {"table-size", Level::warning, [] { Bytes bytes = table(4, 4); bytes.resize(bytes.size() + 8); return linkFrom(with(linkTags(), "A2B0", bytes)); }},
    {"table-parts", Level::error, [] { return inputWith(changed(newTable(3, 3, false), 12, 0)); }},
    {"table-parts", Level::error, [] { return inputWith(changed(newTable(3, 3, true), 28, 0)); }},
    {"curve-type", Level::error, [] { return inputWith(changed(newTable(3, 3, false), 32, 0x74657874)); }},
    {"grid", Level::error, [] { return inputWith(patched(newTable(3, 3, true), 68, 1)); }},
    {"sequence", Level::error, [] { return linkFrom(with(linkTags(), "pseq", cut(sequence(), descriptionElement("One").size()))); }},
};

TEST(IccCheck, NamesTheRuleThatAFileBreaks) {
    for (const Case& one : kCases) {
        auto faults = checkIcc(one.file());
        // What a tag does not cover any more is told as unused, in a note.
        std::erase_if(faults, [&](const Fault& fault) { return fault.level > one.level; });
        std::string found;
        for (const Fault& fault : faults) found += fault.rule + (": " + fault.text) + "; ";
        EXPECT_EQ(faults.size(), 1u) << one.rule << " gives " << found;
        if (faults.size() != 1) continue;
        EXPECT_STREQ(faults[0].rule, one.rule);
        EXPECT_EQ(faults[0].level, one.level) << one.rule;
        EXPECT_FALSE(faults[0].text.empty());
        EXPECT_STRNE(faults[0].remedy, "");
    }
}

TEST(IccCheck, TellsThePlaceOfAFault) {
    const Bytes profile = displayWith("cprt", element("text", {'N', 'o'}));
    const auto faults = checkIcc(profile);
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].tag, fourcc("cprt"));
    EXPECT_EQ(faults[0].offset, directoryOf(profile)[1].offset + 8);
}

TEST(IccCheck, TakesANumberThatTheEndCutsForZero) {
    const auto faults = checkIcc(displayWith("rTRC", element("curv", {1})));
    ASSERT_EQ(faults.size(), 1u);
    EXPECT_STREQ(faults[0].rule, "curve-size");
    EXPECT_EQ(faults[0].text, "a curve claims 0 entries, which do not fit");
}

Bytes moved(const Bytes& profile, size_t entry, int by) {  // and the tag's bytes with it
    Bytes bytes = profile;
    bytes.resize(bytes.size() + 8);
    const uint32_t offset = get32(profile, 132 + 12 * entry + 4), size = get32(profile, 132 + 12 * entry + 8);
    std::copy_n(profile.begin() + offset, size, bytes.begin() + offset + by);
    put32(bytes, 132 + 12 * entry + 4, offset + static_cast<uint32_t>(by));
    put32(bytes, 0, static_cast<uint32_t>(bytes.size()));
    return bytes;
}

TEST(IccCheck, FindsTagsOutOfTheirPlaces) {
    const Bytes profile = display();
    EXPECT_EQ(rulesOf(moved(profile, 8, 2), Level::error), std::vector<std::string>{"tag-place"});
    const uint32_t red = get32(profile, 132 + 12 * 6 + 4);
    const Bytes overlapping = changed(profile, 132 + 12 * 7 + 4, red + 4);
    const auto rules = rulesOf(overlapping, Level::error);
    EXPECT_NE(std::find(rules.begin(), rules.end(), "tag-overlap"), rules.end());
    // Tags that share all of their bytes are sound.
    const Bytes shared = changed(profile, 132 + 12 * 7 + 4, red);
    EXPECT_EQ(rulesOf(shared, Level::error), std::vector<std::string>{});
    EXPECT_EQ(rulesOf(moved(profile, 8, 8)), std::vector<std::string>{"unused"});
}

TEST(IccCheck, FindsPaddingThatIsNotZero) {
    Bytes profile = displayWith("desc", descriptionElement("A display."));
    const auto first = directoryOf(profile)[0];
    ASSERT_NE((first.offset + first.size) % 4, 0u);
    profile[first.offset + first.size] = 1;
    EXPECT_EQ(rulesOf(profile), std::vector<std::string>{"padding"});
}

TEST(IccCheck, PassesTheProfilesOfThisMachine) {
    namespace fs = std::filesystem;
    std::error_code error;
    size_t count = 0;
    for (const char* folder : {"/usr/share/color", "/usr/share/ghostscript"})
        for (fs::recursive_directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
            if (at->path().extension() != ".icc" && at->path().extension() != ".icm") continue;
            const Bytes bytes = readFile(at->path().string());
            for (const Fault& fault : checkIcc(bytes))
                if (fault.level == Level::error)
                    ADD_FAILURE() << at->path() << ' ' << fault.rule << ' ' << precise::signatureText(fault.tag)
                                  << " at " << fault.offset << ": " << fault.text;
            ++count;
        }
    RecordProperty("profiles", static_cast<int>(count));
}

TEST(IccCheck, ReadsNothingBeyondTheBytes) {
    for (const Bytes& good : {display(), display4(), linkFrom(linkTags()), inputWith(newTable(3, 3, true))}) {
        forEachTruncation(good, 100, [](const Bytes& bytes) { (void)checkIcc(bytes); (void)quality::mendIcc(bytes); });
        for (uint32_t seed = 0; seed < 300; ++seed) {
            const Bytes bytes = mutated(good, seed);
            (void)checkIcc(bytes);
            (void)quality::mendIcc(bytes);
        }
    }
}

// ---- Mending ----------------------------------------------------------------------------------

TEST(IccMend, MendsPlacesSizesAndTheId) {
    Bytes broken = moved(display4(), 8, 2);
    broken.push_back(7);
    ASSERT_FALSE(rulesOf(broken, Level::error).empty());
    const Bytes mended = quality::mendIcc(broken);
    EXPECT_EQ(rulesOf(mended), std::vector<std::string>{});
    for (const char* tag : {"desc", "gTRC", "chad"}) EXPECT_EQ(elementOf(mended, tag), elementOf(display4(), tag));
}

TEST(IccMend, LeavesASoundProfileAsItIs) {
    EXPECT_EQ(quality::mendIcc(display4()), display4());
    EXPECT_EQ(quality::mendIcc(linkFrom(linkTags())), linkFrom(linkTags()));
}

Bytes sequenceOf(uint32_t claimed, const std::vector<Bytes>& texts) {
    Bytes bytes = element("pseq");
    append32(bytes, claimed);
    for (size_t at = 0; at < texts.size(); ++at) {
        if (at % 2 == 0) bytes.resize(bytes.size() + 20, 7);
        bytes.insert(bytes.end(), texts[at].begin(), texts[at].end());
    }
    return bytes;
}
Bytes withoutUnicode(std::string_view text) {  // the ASCII part alone, without its end
    Bytes bytes = element("desc");
    append32(bytes, static_cast<uint32_t>(text.size()));
    append(bytes, text);
    return bytes;
}

TEST(IccMend, PutsTheSequenceOfALinkRight) {
    const Bytes one = descriptionElement("One"), two = descriptionElement("Two");
    const Bytes whole = sequenceOf(2, {one, two, two, one});
    const auto mendedOf = [](const Bytes& sequence) {
        return quality::mendIcc(linkFrom(with(linkTags(), "pseq", sequence)));
    };
    const Bytes broken = linkFrom(with(linkTags(), "pseq", sequenceOf(9, {one, two, two, one})));
    EXPECT_EQ(rulesOf(broken), std::vector<std::string>{"sequence"});
    EXPECT_EQ(mendedOf(sequenceOf(9, {one, two, two, one})), linkFrom(with(linkTags(), "pseq", whole)));
    EXPECT_EQ(mendedOf(sequenceOf(2, {withoutUnicode("One"), two, withoutUnicode("Two"), withoutUnicode("One")})),
              linkFrom(with(linkTags(), "pseq", whole)));
    const Bytes lost = sequenceOf(2, {one, two, two, kRamp});
    EXPECT_EQ(mendedOf(lost), linkFrom(with(linkTags(), "pseq", sequenceOf(1, {one, two}))));
    for (const Bytes& mended : {mendedOf(lost), mendedOf(whole)}) EXPECT_EQ(rulesOf(mended), std::vector<std::string>{});
}

TEST(IccMend, GivesALinkWithoutASequenceAnEmptyOne) {
    std::vector<Tag> tags = linkTags();
    std::erase_if(tags, [](const Tag& tag) { return tag.signature == "pseq"; });
    EXPECT_EQ(rulesOf(linkFrom(tags)), std::vector<std::string>{"tag-missing"});
    tags.push_back({"pseq", sequenceOf(0, {})});
    const Bytes mended = quality::mendIcc(linkFrom({tags.begin(), tags.end() - 1}));
    EXPECT_EQ(mended, linkFrom(tags));
    EXPECT_EQ(rulesOf(mended), std::vector<std::string>{});
    EXPECT_EQ(quality::mendIcc(mended), mended);
}

TEST(IccMend, LetsTagsShareTheirBytes) {
    const Bytes profile = display();
    const Bytes shared = changed(profile, 132 + 12 * 7 + 4, get32(profile, 132 + 12 * 6 + 4));
    const Bytes mended = quality::mendIcc(shared);
    EXPECT_LT(mended.size(), profile.size());
    EXPECT_EQ(get32(mended, 132 + 12 * 7 + 4), get32(mended, 132 + 12 * 6 + 4));
}

TEST(IccMend, DoesNotGuessWhereTheDirectoryIsWrong) {
    EXPECT_TRUE(quality::mendIcc(changed(display(), 132 + 4, 1000000)).empty());
    EXPECT_TRUE(quality::mendIcc(Bytes(100, 0)).empty());
}

}  // namespace
}  // namespace ko::test
