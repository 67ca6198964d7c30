// Resource ids of the panel: dialog template 101, its controls and the two logo images. Shared by
// the resource script and the code, so the script can only use plain definitions.
#pragma once

#define IDD_ORVANE_PANEL 101

#define IDC_LOGO 1001
#define IDC_VERSION 1002
#define IDC_TOKEN 1003
#define IDC_SAVE 1004
#define IDC_BALANCE 1005
#define IDC_REFRESH 1006
#define IDC_EXCHANGE_FOLDER 1007
#define IDC_BROWSE 1008
#define IDC_EXPORT_DISPLACEMENT 1009
#define IDC_BAKE_GEOMETRY 1010
#define IDC_SEND 1011
#define IDC_PROGRESS 1012
#define IDC_STATUS_LINE1 1013
#define IDC_STATUS_LINE2 1014
#define IDC_LINK 1015
#define IDC_TARGET_LABEL 1016
#define IDC_TARGET_A 1017
#define IDC_TARGET_B 1018

// PNG logos: 320 x 60 for ordinary screens, 640 x 120 from 144 DPI up.
#define IDR_LOGO 2001
#define IDR_LOGO_LARGE 2002
