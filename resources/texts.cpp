#include "resources/texts.h"

namespace ko::texts {

const char kUntitled[] = "無題";
const char kChannelNumber[] = "チャンネル %d";
const char kCalibTemplate[] = "CALIBDLG";
const char kAllChannels[] = "全チャンネル";
const char kChannelCount[] = "%d チャンネル";
const char kCalibCaption[] = "%s編集 - [%s]";
const char kClbFilter[] = "ｷｬﾘﾌﾞﾚｰｼｮﾝﾌｧｲﾙ (*.clb)|*.clb|";

const char kBkcCaption[] = "K補正ﾃｰﾌﾞﾙの編集 - [%s]";
const char kTncCaption[] = "ﾌｧｲﾙ編集 - [%s]";
const char kDccCaption[] = "DCCﾌｧｲﾙ編集 - [%s]";
const char kBkcFilter[] = "BKCﾌｧｲﾙ (*.BKC)|*.bkc|";
const char kTncFilter[] = "ﾄｰﾝｶｰﾌﾞﾌｧｲﾙ (*.tnc)|*.tnc|";
const char kDccFilter[] = "DCCﾌｧｲﾙ (*.dcc)|*.dcc|";
const char kResetQuestion[] = "初期化します。いいですか？";
const char kProfileCaption[] = "ﾌﾟﾛﾌｧｲﾙ";
const char kProfileErrorCaption[] = "ﾌﾟﾛﾌｧｲﾙｴﾗｰ";
const char kToneFileMissing[] = "ﾄｰﾝｶｰﾌﾞﾌｧｲﾙが見つかりません。\n[%s]";
const char kDccFileMissing[] = "DCCﾌｧｲﾙが見つかりません。\n[%s]";

const char kProfileEditCaption[] = "ﾌﾟﾛﾌｧｲﾙ編集 - [%s]";
const char kProfileFilter[] = "ICCﾌﾟﾛﾌｧｲﾙ (*.ICC)|*.icc|";
const char kProfileMissing[] = "ﾌﾟﾛﾌｧｲﾙが見つかりません。";
const char kTonePage[] = "ﾄｰﾝｶｰﾌﾞ";
const char kCorrectionPage[] = "ｶﾗｰｺﾚｸｼｮﾝ";

#define ICC_FILTER "ICCﾌﾟﾛﾌｧｲﾙ (*.icc, *.icm)|*.icc;*.icm|"
const char kLinkCaption[] = "ﾃﾞﾊﾞｲｽﾘﾝｸ";
const char kLinkBaseFilter[] = ICC_FILTER "LUTﾌｧｲﾙ (*.LUT)|*.lut|";
const char kLinkTargetFilter[] = ICC_FILTER "NQPﾌｧｲﾙ (*.nqp)|*.nqp|";
const char kLinkPrinterFilter[] = ICC_FILTER "DCCﾌｧｲﾙ (*.dcc)|*.dcc|";
const char kLinkBlackFilter[] = "BKCﾌｧｲﾙ (*.bkc)|*.bkc|";
const char kLinkOutputFilter[] = ICC_FILTER;
const char kLinkNotMade[] = "ﾌﾟﾛﾌｧｲﾙ作成に失敗しました。\nﾊﾟﾗﾒｰﾀを確かめてください。";
const char kLinkNotWritten[] = "ﾌﾟﾛﾌｧｲﾙ書き込みに失敗しました。\n作成ﾌﾟﾛﾌｧｲﾙﾊﾟｽを確かめてください。";
const char kLinkMade[] = "ﾌﾟﾛﾌｧｲﾙを作成しました。";
const char kLinkWhite[] = "白： %s";
const char kLinkColour[] = "%s： %s";
const char kLinkMostInk[] = "総ｲﾝｸ量の最大：入力 %s (%s)、出力 %s";
const char kLinkForeignInk[] = "混じるｲﾝｸの最大：一次色 %s、二次色 %s";
const char kPureRamp[] = "他のｲﾝｸなし";
const char kGreyRamp[] = "C + M + Y のｸﾞﾚｰ";

const char kNotSpecified[] = "指定なし";
const char kLightnessSpan[] = "L: %d %% ～ %d %%";
const char kBlackSpan[] = "K: %d %% ～ %d %%";
const char kSaturationRange[] = "彩度 %d ～ %d %%";
const char kHueRange[] = "、色相 %d ～ %d 度";
const char kEveryHue[] = "、色相すべて";
const char kNodesInRange[] = "対象：%d 格子点";
const char kNoChanges[] = "行った変更はありません";
const char kNodesChanged[] = "%d 格子点 変更しました。";

const char kDotPercent[] = "網点 %";
const char kPixelValue[] = "ﾋﾟｸｾﾙ値";

const char kSelectionTemplate[] = "KOSELECTDLG";
const char kNotSet[] = "未設定";
const char* const kIntents[4] = {"視覚的", "相対的色彩", "彩度", "絶対的色彩"};

const char kUnsavedQuestion[] = "変更が保存されていません。保存しますか？";
const char kSaveButton[] = "保存(&S)";
const char kDiscardButton[] = "破棄(&D)";
const char kStayButton[] = "編集に戻る(&B)";
const char kTakeBackQuestion[] = "変更を取り消しますか？";
const char kKeepButton[] = "変更を残す(&K)";
const char kTakeBackButton[] = "取り消す(&T)";
const char kNotSaved[] = "保存できませんでした。";
const char kAgainButton[] = "再試行(&R)";
const char kSaveAsButton[] = "名前を付けて保存(&A)";
const char kReplaceQuestion[] = "%s は既にあります。\n置き換えますか？";
const char kFileMissing[] = "ﾌｧｲﾙが見つかりません。";
const char kFolderMissing[] = "ﾌｫﾙﾀﾞが見つかりません。";
const char kFileInUse[] = "別のﾌﾟﾛｸﾞﾗﾑが使用中です。";
const char kFileDenied[] = "書き込み禁止か、ｱｸｾｽ権限がありません。";
const char kDiskFull[] = "ﾃﾞｨｽｸがいっぱいです。";
const char kNameUnusable[] = "この名前は使えません。";
const char kFileFault[] = "ｴﾗｰ %s が起きました。";
const char kNoFile[] = "ﾌｧｲﾙではありません。";
const char kPathTooLong[] = "ﾊﾟｽが259ﾊﾞｲﾄを超えています。";
const char kPathUnnameable[] = "ｼｽﾃﾑのｺｰﾄﾞﾍﾟｰｼﾞにない文字が名前にあります。";
const char kNoIccProfile[] = "ICCﾌﾟﾛﾌｧｲﾙではありません。";
const char kNoRgbProfile[] = "%sのﾌﾟﾛﾌｧｲﾙです。ここにはRGBのﾌﾟﾛﾌｧｲﾙが必要です。";
const char kWrongSpace[] = "%sのﾌﾟﾛﾌｧｲﾙです。ここにはCMYKのﾌﾟﾛﾌｧｲﾙが必要です。";
const char kIsLink[] = "ﾃﾞﾊﾞｲｽﾘﾝｸです。ここにはLabかXYZにつながるﾌﾟﾛﾌｧｲﾙが必要です。";
const char kWrongConnection[] = "%sにつながるﾌﾟﾛﾌｧｲﾙです。LabかXYZにつながるものが必要です。";
const char kTagMissing[] = "ﾀｸﾞ%sがありません。";
const char kTagUnreadable[] = "ﾀｸﾞ%sが読めません。";
const char kTagShape[] = "ﾀｸﾞ%sは%sﾁｬﾝﾈﾙから%sﾁｬﾝﾈﾙへの変換です。%sから%sへの変換が必要です。";
const char kNoLink[] = "%sから%sへのﾌﾟﾛﾌｧｲﾙです。ここにはCMYKからCMYKへのﾃﾞﾊﾞｲｽﾘﾝｸが必要です。";
const char kIccNeedsExtension[] = "ICCﾌﾟﾛﾌｧｲﾙですが、拡張子が.iccではありません。";
const char kNoBlackCurve[] = "K補正ﾌｧｲﾙ (.bkc) ではありません。";
const char kNoToneCurve[] = "ﾄｰﾝｶｰﾌﾞﾌｧｲﾙ (.tnc) ではありません。";
const char kNoDcc[] = "DCCﾌｧｲﾙ (.dcc) ではありません。";
const char kNeedsPrinter[] = "ﾀｰｹﾞｯﾄにはﾌﾟﾘﾝﾀも必要です。";
const char kNeedsTarget[] = "ﾌﾟﾘﾝﾀにはﾀｰｹﾞｯﾄも必要です。";
const char kNeedsOutput[] = "作成するﾌｧｲﾙの名前がありません。";
const char kOutputIsInput[] = "入力のﾌｧｲﾙです。上書きできません。";
const char kOutputIsTable[] = "ICCﾘﾝｸの拡張子は.iccです。";
const char kNothingToLink[] = "色の変換が何も指定されていません。色を変えないﾘﾝｸを作成しますか？";
const char kLimited[] = "%s ～ %s に制限しました。";
const char kNoNumber[] = "数値ではありません。";
const char kNoTitleKept[] = "ﾀｲﾄﾙは.tncﾌｧｲﾙに保存されません。";
const char kOutputProfile[] = "出力ﾌﾟﾛﾌｧｲﾙ";
const char kDisplayProfile[] = "ﾃﾞｨｽﾌﾟﾚｲﾌﾟﾛﾌｧｲﾙ";
const char kInputProfile[] = "入力ﾌﾟﾛﾌｧｲﾙ";
const char kTableFile[] = "変換ﾃｰﾌﾞﾙ";
const char kDccSettings[] = "DCC設定";
const char kBlackCorrection[] = "K補正ｶｰﾌﾞ";
const char kCurveFalls[] = "値が下がる所があります。";
const char kOutside[] = "%s ～ %s の範囲外です。";
const char kBelow[] = "%s より小さい値です。";
}  // namespace ko::texts
