// The default pictures built into Zarvolt: 33 small pictures a program
// names on its buttons ("PicOK", "PicSave", ...) and two window backgrounds
// ("ImgPantano", "ImgSobre"), all drawn here rather than shipped as files,
// and the look-up of a name in their lists.
#pragma once

#include <QImage>
#include <QPixmap>
#include <QString>

namespace zv {

inline constexpr char kListaFiguras[] =
    "PicOK#0,PicSave#1,PicDelete#2,PicExit#3,PicOpen#4,PicNew#5,PicPrint#6,PicAdd#7,"
    "PicFind#8,Pic$#9,PicPeople#10,PicGlass#11,PicOK2#12,PicForbidden#13,PicUndo#14,PicRedo#15,"
    "PicRight#16,PicLeft#17,PicTools#18,PicMoney#19,PicExit2#20,PicForm#21,PicGear#22,PicBook#23,PicBooks#24,"
    "PicBall#25,PicCal#26,PicChart#27,PicFolder#28,PicKeys#29,PicGlobe#30,PicTalk#31,PicMonitor#32,";
inline constexpr char kListaFundos[] = "ImgPantano#0,ImgSobre#1,";
inline constexpr int kTotalFiguras = 33;

// The index of `nome` in a list of entries "Name#n,", by the original's
// rule: both in capitals, the name with "#" behind it found anywhere in the
// list (so the end of a name is enough: "OK" finds PicOK); -1 when the name
// is empty or isn't there.
int ProcuraNaLista(const QString& lista, const QString& nome);

// Picture n of the first list, 32 by 32; null outside 0 to 32.
QPixmap FiguraPadrao(int n);
// Background n, 640 by 480: 0 a marsh at dusk, 1 a blue field of waves.
QImage FundoPadrao(int n);

}  // namespace zv
