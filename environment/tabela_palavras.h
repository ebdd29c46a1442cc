// The words the editor colours, in the four sections of the word table and
// in its slot order: commands, keywords, attributes, operators.
#pragma once

namespace zv::palavras {

const char16_t* const kComandos[] = {
    u"Abs", u"AddRecord", u"AddIconSysTray", u"AddSysStartup", u"And", u"AnimatedGif", u"API",
    u"Asc", u"Atn", u"BinToDec", u"Box", u"Browser", u"Button", u"ButtonStyle", u"Calendar",
    u"Call", u"CaptureWindow", u"ChangeIcon", u"ChangeWallpaper", u"Check", u"Chr", u"Circle",
    u"ClearWindow", u"CloseDB", u"CloseFile", u"Cls", u"Combo", u"ConnectFTP", u"ConnectP2P",
    u"CompactDB", u"ConvStr", u"Copy", u"Cos", u"Currency", u"Date", u"DateAdd", u"DateDiff",
    u"Day", u"DB", u"DecToBin", u"DeleteFile", u"DeleteRecord", u"DialogBox", u"Directory",
    u"DownFileFTP", u"DrawPictures", u"Else", u"EndDB", u"EndFunction", u"EndIf", u"EndProgram",
    u"EndSub", u"EndWindow", u"Event", u"Exp", u"ExtractFile", u"FindDB", u"FindFile", u"Fix",
    u"Font", u"Fonts", u"Format", u"Frame", u"Function", u"GetString", u"GetText", u"GetWinReg",
    u"GoTo", u"Gradient", u"Hex", u"Icon", u"If", u"Image", u"IniPos", u"Inport", u"InsertFile",
    u"Int", u"JoinStr", u"KeyTest", u"Label", u"Link", u"ListenP2P", u"Log", u"Loop", u"Mask",
    u"Menu", u"Message", u"MinimizeSysTray", u"MkDir", u"Month", u"NewWindow", u"OpenDB",
    u"OpenFile", u"Radio", u"Or", u"OrderDB", u"OutPort", u"Paint", u"Picture", u"Point",
    u"Position", u"Printer", u"UpFileFTP", u"Random", u"ReadFile", u"ReadPoint", u"ReadRecord",
    u"RecordSound", u"Rectangle", u"RemoveSysStartup", u"Rep", u"RepStr", u"RGB", u"Return",
    u"RmDir", u"Round", u"SaveString", u"SaveWinReg", u"ScrollBar", u"SendP2P", u"SeqStr", u"Sgn",
    u"Sin", u"SizeFile", u"SystemMenu", u"Sound", u"SQL", u"Sqr", u"StrLen", u"Straight", u"StrPos",
    u"StrVal", u"Sub", u"SubStr", u"Tan", u"TestDate", u"TestEmail", u"TestMouse", u"Text", u"Time",
    u"Timer", u"TotalRecordsDB", u"Transition", u"Trim", u"UnCaptureWindow", u"UpdateRecord",
    u"Var", u"Variable", u"Video", u"Wait", u"WebCam", u"WeekDay", u"Window", u"While",
    u"WindowHeight", u"WindowWidth", u"Write", u"WriteFile", u"Year", u"RevDate",
    u"StartWindowInvisible",
};

const char16_t* const kPalavrasChave[] = {
    u".Draw", u".End", u".Font", u".Line", u".NewLine", u".NewPage", u"Off", u".Position",
    u".Print", u".Straight", u".TestEndPage", u".Use", u".Write", u"Activate", u"Add", u"Arg",
    u"Argument", u"AutoInc", u"AutoSize", u"Back", u"Balance", u"Center", u"ClickBox",
    u"ClickButton", u"Delete", u"Close", u".Cls", u"Col", u"Config", u"Continue", u"Decimal",
    u"Dinamic", u"Edit", u"End", u"Entra", u"EOF", u"EventAnimatedGif", u"EventBox", u"EventClick",
    u"EventKey", u"EventResize", u"Events", u"Execute", u"False", u"Find", u"Fix", u"Forward",
    u"FrameNumber", u"Front", u"FullScreen", u"FunctionName", u"GetText", u"HDC", u"Home", u"HWND",
    u"Integer", u"Key", u"Left", u"Library", u".Loop", u"Max", u"MaxLength", u"MouseClick",
    u"MoveFirst", u"MoveLast", u"MoveNext", u"MovePrevious", u"NextFrame", u"Numeric", u"Open",
    u"OptionYesNo", u"Order", u"Parent", u"Pause", u"Play", u".Pointer", u"Preserve",
    u"PreviousFrame", u"Print", u"Remove", u"Resize", u"Reverse", u"Right", u"Save", u"Select",
    u"Sequential", u"Set", u"SetFocus", u"Start", u"Static", u"Stop", u"String", u"Title",
    u"MainOption", u"TotalItems", u".TotalRecords", u"True", u"Update", u"URL", u"WithoutBox",
    u"Volume", u"WindowTitle", u".SavePicture", u".Point",
};

const char16_t* const kAtributos[] = {
    u".Image", u".LineHeight", u".PaperHeight", u"Alignment", u"AlterCell", u"BackColor", u"Yellow",
    u"RetStr", u"Black", u"Blue", u"Bold", u"Border", u"BtnDisabled", u"BtnDown", u"BtnFocus",
    u"BtnHigh", u"BtnUp", u"Caption", u"ColBoxRef", u"Color", u"ColSize", u"Col", u"CommandLine",
    u"Cursor", u"CursorPos", u"DarkBlue", u"DarkGreen", u"DarkRed", u"DarkYellow",
    u"DefaultBackcolor", u"Desktop", u"Enabled", u"Enter", u"FieldReturn", u"FinalPicture",
    u"Fixed", u"FontName", u"FontSize", u"ForeColor", u"GotFocus", u"Green", u"Height", u"Img",
    u"InitialPicture", u"Italic", u"ZVDir", u"LightBlue", u"LinBoxRef", u"Lin", u"Lines",
    u"LinIniList", u"LinListRef", u"LinSize", u"LostFocus", u"Mode", u"MouseButton",
    u"MouseGeneral", u"MouseIcon", u"MouseX", u"MouseY", u"Name", u".Numeric", u"ObjectValue",
    u"PointSize", u"Pos", u"PosX", u"PosY", u"ProgramDir", u"Red", u"ReferenceValue", u"RefIndex",
    u"Res", u"Resolution", u"RetValue", u"RightMargin", u"SelStart", u"Size", u"TabIndex",
    u"TestButton", u"TextRTF", u"Tip", u"TotalColBox", u"TotalFonts", u"TotalLinBox", u"Txt",
    u"Underline", u"Value", u"VideoRes", u"Visible", u"White", u"Width", u"WindowsDir",
    u"Background", u"AlphaNumeric", u"SQLPointer", u"ScreenHeight", u"ScreenWidth",
};

const char16_t* const kOperadores[] = {
    u"(", u")", u"=", u"<", u">", u"+", u"*", u"/", u"-", u"++", u"--", u"%", u"^", u"&",
};

}  // namespace zv::palavras
