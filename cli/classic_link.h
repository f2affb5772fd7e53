// Links by the library's own arithmetic: jKoCmykCombineProfile, and everything that can be said
// against its input said beforehand.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/files.h"
#include "cli/icc_input.h"
#include "cli/link_choices.h"

namespace ko::cli {

// Fail for what is no base of a link, and for what is no file of a black curve.
void checkBase(const InputFile& file);
void requireBlackCurve(const InputFile& file);

// The table of the intent, of the right shape; and what RGB goes through to the connection space.
void requireTable(const IccInput& profile, bool toConnectionSpace, int intent);
void requireClassicRgb(const IccInput& profile, int intent);

// Whether source and destination, which may be missing, are a foreign table with DCC settings.
bool isForeignPair(const InputFile* source, const InputFile* destination);

class ClassicLink {
public:
    explicit ClassicLink(const LinkChoices& choices);

    const std::vector<std::string>& inputs() const { return inputs_; }
    CmykProfilePtr combine(const std::string& output);

private:
    const InputFile& add(const std::string& path, char (&field)[KOLINK_PATH_SIZE]);
    void chooseConversion();
    void checkConversion();
    void chooseBlack();
    void choosePaper();

    const LinkChoices& choices_;
    CmsLinkSettings settings_{};
    std::vector<std::unique_ptr<InputFile>> files_;
    std::vector<LibraryName> names_;
    std::vector<std::string> inputs_;
    const InputFile* source_ = nullptr;
    const InputFile* destination_ = nullptr;
    bool isIcc_ = false;
    bool isForeign_ = false;
};

}  // namespace ko::cli
