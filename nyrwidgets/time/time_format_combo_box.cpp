#include "nyrwidgets/time/time_format_combo_box.h"

#include "nyr/frame/notifications.h"
#include "nyrwidgets/frame/message_event.h"

CNyrTime::CTimeFormatComboBox::CTimeFormatComboBox(QWidget* parent) : QComboBox(parent) {}

CNyrTime::CTimeFormatComboBox::~CTimeFormatComboBox() = default;

void CNyrTime::InitializeTimeFormatComboBox(CTimeFormatComboBox& comboBox)
{
    const CNyrTime now;
    comboBox.clear();
    for (int row = 0; row < eTimeFormatCount; ++row)
        comboBox.addItem(QString::fromStdString(now.Format(static_cast<eTimeFormat>(row))));
    ReloadTimeFormat();
    // A stored 32 has no row; it shows row 0, whose pattern it uses.
    const int index = CurrentTimeFormatIndex();
    comboBox.setCurrentIndex(index < eTimeFormatCount ? index : 0);
}

int CNyrTime::GetCurrentSelection(const CTimeFormatComboBox& comboBox)
{
    return comboBox.currentIndex();
}

void CNyrTime::SaveCurrentSelection(CTimeFormatComboBox& comboBox, QWidget* window)
{
    const int previous = SaveTimeFormat(GetCurrentSelection(comboBox));
    const int current = CurrentTimeFormatIndex();
    if (current != previous && window)
        NyrSendMessageToDescendants(window, WM_NYR_FORMAT_CHANGED_TIME, static_cast<quintptr>(previous), current);
}
