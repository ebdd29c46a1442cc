// LstAjuda: the help index's 160 words, in its order (the same list as
// docs/reference/words.txt, which a test holds them to).
#pragma once

#include <array>

namespace zv {

inline constexpr std::array<const char16_t*, 160> kLstAjuda = {
    u"Abs", u"AddIconSysTray", u"AddRecord", u"AddSysStartup", u"And", u"AnimatedGif", u"API", u"Asc", u"Atn",
    u"BinToDec", u"Box", u"Browser", u"Button", u"ButtonStyle", u"Calendar", u"Call", u"CaptureWindow",
    u"ChangeIcon", u"ChangeWallpaper", u"Check", u"Chr", u"Circle", u"ClearWindow", u"CloseDB", u"CloseFile",
    u"Combo", u"CompactDB", u"ConnectFTP", u"ConnectP2P", u"ConvStr", u"Copy", u"Cos", u"Currency", u"Date",
    u"Day", u"DateAdd", u"DateDiff", u"DecToBin", u"DB", u"DeleteFile", u"DeleteRecord", u"Desktop",
    u"DialogBox", u"Directory", u"DownFileFTP", u"DrawPictures", u"EndProgram", u"EndWindow", u"Event",
    u"Exp", u"ExtractFile", u"FindDB", u"FindFile", u"Fix", u"Font", u"Fonts", u"Format", u"Frame",
    u"GetString", u"GetText", u"GetWinReg", u"GotFocus", u"GoTo", u"Gradient", u"Hex", u"Icon", u"If",
    u"Image", u"Inport", u"InsertFile", u"Int", u"JoinStr", u"KeyTest", u"Label", u"ZVDir", u"Link",
    u"ListenP2P", u"Log", u"LostFocus", u"Mask", u"Message", u"MinimizeSysTray", u"MkDir", u"Month",
    u"MouseX", u"MouseY", u"NewWindow", u"OpenDB", u"OpenFile", u"Or", u"OrderDB", u"OutPort", u"Paint",
    u"Picture", u"Point", u"Position", u"Printer", u"ProgramDir", u"ProgramsDir", u"Radio", u"Random",
    u"ReadFile", u"ReadPoint", u"ReadRecord", u"RecordSound", u"Rectangle", u"RemoveSysStartup", u"Rep",
    u"RepStr", u"RetStr", u"RetValue", u"RGB", u"RmDir", u"Round", u"SaveString", u"SaveWinReg", u"ScrollBar",
    u"SendP2P", u"SeqStr", u"Sgn", u"Sin", u"SizeFile", u"Sound", u"SQL", u"Sqr", u"Straight", u"StrLen",
    u"StrPos", u"StrVal", u"SubStr", u"SystemMenu", u"Tan", u"TestButton", u"TestDate", u"TestEmail",
    u"TestMouse", u"Text", u"Time", u"Timer", u"TotalFonts", u"TotalRecordsDB", u"Transition", u"Trim",
    u"True", u"UnCaptureWindow", u"UpdateRecord", u"UpFileFTP", u"Variable", u"Video", u"Wait", u"WebCam",
    u"WeekDay", u"While", u"Window", u"WindowHeight", u"WindowsDir", u"WindowWidth", u"Write", u"WriteFile",
    u"Year",
};

}  // namespace zv
