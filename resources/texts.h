// Japanese user texts of the engine, Shift-JIS at run time, and the language tables. They stand
// here alone, so that no other source depends on the execution character set.
#pragma once

#include <span>
#include <string_view>

namespace ko::texts {

extern const char kUntitled[];       // the title of a new curve, profile or link
extern const char kChannelNumber[];  // the name of a calibration channel, with "%d"

// The calibration editor, to be translated.
extern const char kCalibTemplate[];
extern const char kAllChannels[];
extern const char kChannelCount[];  // with %d
extern const char kCalibCaption[];  // with %s for the description and the file's name
extern const char kClbFilter[];

// The tone dialogs. Captions have one %s, the file's path.
extern const char kBkcCaption[];
extern const char kTncCaption[];
extern const char kDccCaption[];
extern const char kBkcFilter[];  // of the file dialog: description, pattern, each ended by a bar
extern const char kTncFilter[];
extern const char kDccFilter[];
extern const char kResetQuestion[];
extern const char kProfileCaption[];
extern const char kProfileErrorCaption[];
extern const char kToneFileMissing[];  // with one %s
extern const char kDccFileMissing[];   // with one %s

// The CMYK profile dialog.
extern const char kProfileEditCaption[];  // with one %s
extern const char kProfileFilter[];
extern const char kProfileMissing[];
extern const char kTonePage[];        // the names of its pages
extern const char kCorrectionPage[];

// The device-link dialog.
extern const char kLinkCaption[];
extern const char kLinkBaseFilter[];
extern const char kLinkTargetFilter[];
extern const char kLinkPrinterFilter[];
extern const char kLinkBlackFilter[];
extern const char kLinkOutputFilter[];
extern const char kLinkNotMade[];
extern const char kLinkNotWritten[];
extern const char kLinkMade[];
extern const char kLinkWhite[];       // with %s for inks
extern const char kLinkColour[];      // with %s for a colour and for what it becomes
extern const char kLinkMostInk[];     // with %s for the inks in, their colour, the inks out
extern const char kLinkForeignInk[];  // with %s for primaries and for secondaries
extern const char kPureRamp[];        // a ramp without another ink
extern const char kGreyRamp[];

// What the file of a field of it is.
extern const char kOutputProfile[];
extern const char kDisplayProfile[];
extern const char kInputProfile[];
extern const char kTableFile[];
extern const char kDccSettings[];
extern const char kBlackCorrection[];

// The colour-correction page.
extern const char kNotSpecified[];
extern const char kLightnessSpan[];    // with two %d
extern const char kBlackSpan[];        // with two %d
extern const char kSaturationRange[];  // with two %d; one of the next two follows
extern const char kHueRange[];         // with two %d
extern const char kEveryHue[];
extern const char kNodesInRange[];     // with one %d
extern const char kNoChanges[];        // the list of changes is empty
extern const char kNodesChanged[];     // with one %d

// The colour pick dialog and the colour-correction page: what their fields count in.
extern const char kDotPercent[];
extern const char kPixelValue[];

// The profile-setting dialog.
extern const char kSelectionTemplate[];  // its template, which the language tables translate
extern const char kNotSet[];
extern const char* const kIntents[4];

// What a dialog asks before work is lost, and its answers.
extern const char kUnsavedQuestion[];
extern const char kSaveButton[];
extern const char kDiscardButton[];
extern const char kStayButton[];
extern const char kTakeBackQuestion[];
extern const char kKeepButton[];
extern const char kTakeBackButton[];
extern const char kNotSaved[];
extern const char kAgainButton[];
extern const char kSaveAsButton[];
extern const char kReplaceQuestion[];  // with %s for the file

// Why a file or a setting cannot be used. %s stand for what frame/problem.h calls details.
extern const char kFileMissing[];
extern const char kFolderMissing[];
extern const char kFileInUse[];
extern const char kFileDenied[];
extern const char kDiskFull[];
extern const char kNameUnusable[];
extern const char kFileFault[];
extern const char kNoFile[];
extern const char kPathTooLong[];
extern const char kPathUnnameable[];
extern const char kNoIccProfile[];
extern const char kNoRgbProfile[];      // with %s for its colour space
extern const char kWrongSpace[];
extern const char kIsLink[];
extern const char kWrongConnection[];
extern const char kTagMissing[];
extern const char kTagUnreadable[];
extern const char kTagShape[];
extern const char kNoLink[];
extern const char kIccNeedsExtension[];
extern const char kNoBlackCurve[];
extern const char kNoToneCurve[];
extern const char kNoDcc[];
extern const char kNeedsPrinter[];
extern const char kNeedsTarget[];
extern const char kNeedsOutput[];
extern const char kOutputIsInput[];
extern const char kOutputIsTable[];
extern const char kNothingToLink[];
extern const char kLimited[];
extern const char kNoNumber[];
extern const char kBelow[];
extern const char kOutside[];
extern const char kNoTitleKept[];
extern const char kCurveFalls[];

// A language table by the name of its resource, such as "TEXT_ENGLISH"; empty when there is none.
// Windows modules carry them as resources instead.
std::span<const char> table(std::string_view name) noexcept;

}  // namespace ko::texts
