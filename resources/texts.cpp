#include "resources/texts.h"

namespace ko::texts {

const char kUntitled[] = "無題";
const char kChannelNumber[] = "チャンネル %d";

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

}  // namespace ko::texts
