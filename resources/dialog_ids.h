/* The controls of the dialogs, by name. Read by the resource compiler as well: plain defines. */
#ifndef KOLINK_DIALOG_IDS_H
#define KOLINK_DIALOG_IDS_H

/* Every editor of a file. */
#define IDC_TITLE 1018
#define IDC_GRAPH 1025
#define IDC_RESET 1031
#define IDC_STRIP_INPUT 1065
#define IDC_STRIP_OUTPUT 1066
#define IDC_INPUT_LABEL 1073 /* below the input strip */
#define IDC_CONTRAST 1083
#define IDC_SAVE 1166
#define IDC_SAVE_AS 1167
#define IDC_NEW 1168
#define IDC_STATUS 1183 /* what is to be said about what was just done */

/* Ink channels: the button that selects one, its percentage and the input's beside it. */
#define IDC_ALL_INKS 1041
#define IDC_INK_C 1042
#define IDC_INK_M 1043
#define IDC_INK_Y 1044
#define IDC_INK_K 1046
#define IDC_INK_GCR 1047
#define IDC_INK_UCR 1048
#define IDC_PERCENT_C 1036
#define IDC_PERCENT_M 1037
#define IDC_PERCENT_Y 1040
#define IDC_PERCENT_K 1045
#define IDC_PERCENT_GCR 1049
#define IDC_PERCENT_UCR 1050
#define IDC_INPUT_C 1067
#define IDC_INPUT_M 1068
#define IDC_INPUT_Y 1069
#define IDC_INPUT_K 1070
#define IDC_INPUT_GCR 1071
#define IDC_INPUT_UCR 1072

/* DCC settings. */
#define IDC_DPI_X 1110
#define IDC_DPI_Y 1111
#define IDC_TOTAL_INK 1113
#define IDC_LIGHT_INK 1114

/* Calibration: what is told of the set, and the editing of its tones. */
#define IDC_DATE 1201
#define IDC_USE 1202
#define IDC_CHANNEL_COUNT 1203
#define IDC_CHANNEL 1204
#define IDC_RELATIVE 1205
#define IDC_VALUE_X 1206
#define IDC_VALUE_Y 1207
#define IDC_ADD 1208

/* The CMYK profile: the frame and its page of tone curves. */
#define IDC_COMMENT 1081
#define IDC_PAGES 1165
#define IDC_CURVES_INPUT 1047
#define IDC_CURVES_OUTPUT 1048

/* Colour pick. */
#define IDC_PICK_FIELD 1094
#define IDC_PICK_LIGHTNESS 1155
#define IDC_PICK_LIGHTNESS_MARK 1109 /* the strip that shows the position beside it */
#define IDC_PICK_BLACK 1115
#define IDC_PICK_BLACK_MARK 1117
#define IDC_PICK_BLACK_LABEL 1128
#define IDC_PICK_SWATCH 1093
#define IDC_PICK_C 1037
#define IDC_PICK_M 1036
#define IDC_PICK_Y 1038
#define IDC_PICK_K 1039
#define IDC_PICK_SPIN_C 1101
#define IDC_PICK_SPIN_M 1102
#define IDC_PICK_SPIN_Y 1103
#define IDC_PICK_SPIN_K 1104
#define IDC_PICK_UNIT_C 1058
#define IDC_PICK_UNIT_M 1059
#define IDC_PICK_UNIT_Y 1060
#define IDC_PICK_UNIT_K 1061
#define IDC_PICK_SCALE 1157 /* what the fields count in */
#define IDC_PICK_256 1041

/* Profile setting. */
#define IDC_SELECT_RGB 1009
#define IDC_SELECT_CMYK 1407
#define IDC_SELECT_INTENT 1408
#define IDC_SELECT_BROWSE_RGB 1409
#define IDC_SELECT_BROWSE_CMYK 1410

/* The device link: paths with their browse buttons, radios, the paper colour. */
#define IDC_LINK_BASE 1036
#define IDC_LINK_SOURCE 1038
#define IDC_LINK_DESTINATION 1039
#define IDC_LINK_BLACK 1040
#define IDC_LINK_OUTPUT 1047
#define IDC_LINK_BROWSE_BASE 1031
#define IDC_LINK_BROWSE_SOURCE 1032
#define IDC_LINK_BROWSE_DESTINATION 1033
#define IDC_LINK_BROWSE_BLACK 1034
#define IDC_LINK_BROWSE_OUTPUT 1035
#define IDC_LINK_PERCEPTUAL 1048
#define IDC_LINK_RELATIVE 1049
#define IDC_LINK_SATURATION 1050
#define IDC_LINK_KEEP_NONE 1043
#define IDC_LINK_KEEP_PRIMARIES 1041
#define IDC_LINK_KEEP_SECONDARIES 1042
#define IDC_LINK_WHITE_PROFILE 1044
#define IDC_LINK_WHITE_NO_INK 1045
#define IDC_LINK_WHITE_GIVEN 1046
#define IDC_LINK_FACT_BASE 1184 /* what the file of a path is */
#define IDC_LINK_FACT_SOURCE 1185
#define IDC_LINK_FACT_DESTINATION 1186
#define IDC_LINK_FACT_BLACK 1187
#define IDC_LINK_SWATCH 1180
#define IDC_LINK_AMOUNT 1037
#define IDC_LINK_AMOUNT_LABEL 1181
#define IDC_LINK_AMOUNT_UNIT 1182
#define IDC_LINK_COLOURS 1196 /* the result: what becomes of colours */
#define IDC_LINK_MORE_COLOURS 1197
#define IDC_LINK_TOTALS 1198
#define IDC_LINK_RAMPS 1199
#define IDC_LINK_SHOW_PAPER 101 /* a command without a control: the swatch is to be painted anew */

/* The page of the CMYK profile that corrects colours locally. */
#define IDC_CUBE_AREA 1094
#define IDC_CUBE_SATURATION_BAR 1100
#define IDC_CUBE_HUE_BAR 1190
#define IDC_CUBE_LIGHTNESS 1155
#define IDC_CUBE_LIGHTNESS_BAR 1109
#define IDC_CUBE_BLACK 1112
#define IDC_CUBE_BLACK_BAR 1191
#define IDC_CUBE_RANGE 1140 /* hue and saturation, from where to where */
#define IDC_CUBE_BLACK_SPAN 1128
#define IDC_CUBE_LIGHTNESS_SPAN 1129
#define IDC_CUBE_COUNT 1192
#define IDC_CUBE_SATURATION 1141
#define IDC_CUBE_HUE 1142
#define IDC_CUBE_SCALE 1157 /* what the fields count in */
#define IDC_CUBE_C 1037 /* the colour picked */
#define IDC_CUBE_M 1036
#define IDC_CUBE_Y 1038
#define IDC_CUBE_K 1039
#define IDC_CUBE_SPIN_C 1101
#define IDC_CUBE_SPIN_M 1102
#define IDC_CUBE_SPIN_Y 1103
#define IDC_CUBE_SPIN_K 1104
#define IDC_CUBE_CURRENT_C 1087 /* what the profile makes of it */
#define IDC_CUBE_CURRENT_M 1088
#define IDC_CUBE_CURRENT_Y 1089
#define IDC_CUBE_CURRENT_K 1090
#define IDC_CUBE_CHANGED_C 1041 /* what it is to make of it */
#define IDC_CUBE_CHANGED_M 1040
#define IDC_CUBE_CHANGED_Y 1042
#define IDC_CUBE_CHANGED_K 1043
#define IDC_CUBE_CHANGED_SPIN_C 1105
#define IDC_CUBE_CHANGED_SPIN_M 1106
#define IDC_CUBE_CHANGED_SPIN_Y 1107
#define IDC_CUBE_CHANGED_SPIN_K 1108
#define IDC_CUBE_256 1134
#define IDC_CUBE_BEFORE 1193 /* swatches */
#define IDC_CUBE_AFTER 1194
#define IDC_CUBE_CHANGE 1031
#define IDC_CUBE_UNDO 1195
#define IDC_CUBE_INITIALISE 1033
#define IDC_CUBE_BEFORE_LAB 1210 /* the swatches as L*a*b*, and how far they are apart */
#define IDC_CUBE_AFTER_LAB 1211
#define IDC_CUBE_DIFFERENCE 1212
#define IDC_CUBE_FILE 1213 /* pictures of the file in place of what is edited */
#define IDC_CUBE_MADE 1214 /* the changes made, and the button that takes one out */
#define IDC_CUBE_TAKE_OUT 1215

#endif
