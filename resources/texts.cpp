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
const char kLinkBlackFilter[] = "LUTﾌｧｲﾙ (*.bkc)|*.bkc|";
const char kLinkOutputFilter[] = ICC_FILTER;
const char kLinkNotMade[] = "ﾌﾟﾛﾌｧｲﾙ作成に失敗しました。\nﾊﾟﾗﾒｰﾀを確かめてください。";
const char kLinkNotWritten[] = "ﾌﾟﾛﾌｧｲﾙ書き込みに失敗しました。\n作成ﾌﾟﾛﾌｧｲﾙﾊﾟｽを確かめてください。";
const char kLinkMade[] = "ﾌﾟﾛﾌｧｲﾙを作成しました。";

const char kNotSpecified[] = "指定なし";
const char kLightnessSpan[] = "L: %d %% ～ %d %%";
const char kBlackSpan[] = "K: %d %% ～ %d %%";
const char kSaturationRange[] = "彩度 %d ～ %d %%";
const char kHueRange[] = "、色相 %d ～ %d 度";
const char kEveryHue[] = "、色相すべて";
const char kNodesInRange[] = "対象：%d 格子点";
const char kNodesChanged[] = "%d 格子点 変更しました。";

const char kDotPercent[] = "網点 %";
const char kPixelValue[] = "ﾋﾟｸｾﾙ値";

const char kSelectionTemplate[] = "KOSELECTDLG";
const char kNotSet[] = "未設定";
const char* const kIntents[4] = {"視覚的", "相対的色彩", "彩度", "絶対的色彩"};

}  // namespace ko::texts
