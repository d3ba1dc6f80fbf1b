// The selection lists and the members of the unit settings that work on them.
#include "nyrwidgets/values/unit_combo_box.h"

#include <QString>

#include "nyr/frame/notifications.h"
#include "nyr/frame/resource_module.h"
#include "nyrwidgets/frame/message_event.h"

namespace {

long SelectedUnit(const QComboBox& list)
{
    bool ok = false;
    const int unit = list.currentData().toInt(&ok);
    return list.currentIndex() >= 0 && ok ? unit : -1;
}

// Fills `list` from a unit table, skipping the codes `skip` names, and
// selects `stored`, else `current`, else the first entry.
template <class Skip>
void Fill(QComboBox& list, const NYR_UNIT_TEXT* table, Skip skip, long stored, long current)
{
    list.clear();
    for (const NYR_UNIT_TEXT* row = table; row->unit != -1; ++row)
        if (!skip(row->unit))
            list.addItem(QString::fromStdString(NyrLoadString(static_cast<unsigned>(row->textId))),
                         static_cast<int>(row->unit));
    int index = list.findData(static_cast<int>(stored));
    if (index < 0)
        index = list.findData(static_cast<int>(current));
    list.setCurrentIndex(index < 0 && list.count() > 0 ? 0 : index);
}

void NotifyChange(QWidget* root, unsigned int message, long oldUnit, long newUnit)
{
    if (newUnit != oldUnit && root)
        NyrSendMessageToDescendants(root, message, static_cast<quintptr>(oldUnit), static_cast<qintptr>(newUnit), true);
}

}  // namespace

CNyrUnitSettingsDistance::CUnitDistanceComboBox::CUnitDistanceComboBox(QWidget* parent) : QComboBox(parent)
{
}

CNyrUnitSettingsDistance::CUnitDistanceComboBox::~CUnitDistanceComboBox() = default;

long CNyrUnitSettingsDistance::CUnitDistanceComboBox::GetCurrentSelection() const
{
    return SelectedUnit(*this);
}

CNyrUnitSettingsAngle::CUnitAngleComboBox::CUnitAngleComboBox(QWidget* parent) : QComboBox(parent)
{
}

CNyrUnitSettingsAngle::CUnitAngleComboBox::~CUnitAngleComboBox() = default;

long CNyrUnitSettingsAngle::CUnitAngleComboBox::GetCurrentSelection() const
{
    return SelectedUnit(*this);
}

void CNyrUnitSettingsDistance::InitializeUnitDistanceComboBox(CUnitDistanceComboBox& list)
{
    Fill(list, NyrUnitTableDistance(), [](long) { return false; }, StoredUnit(NYR_UNIT_METRES), Unit());
}

long CNyrUnitSettingsDistance::GetCurrentSelection(const CUnitDistanceComboBox& list) const
{
    return list.GetCurrentSelection();
}

int CNyrUnitSettingsDistance::SaveCurrentSelection(const CUnitDistanceComboBox& list, QWidget* notifyRoot)
{
    const long old = Unit();
    if (!SaveUnit(list.GetCurrentSelection()))
        return 0;
    NotifyChange(notifyRoot, WM_NYR_UNIT_CHANGED_DISTANCE, old, Unit());
    return 1;
}

void CNyrUnitSettingsAngle::InitializeUnitAngleComboBox(CUnitAngleComboBox& list, const int* excluded)
{
    Fill(list, NyrUnitTableAngle(), [excluded](long unit) { return IsExcluded(unit, excluded); }, StoredUnit(-1),
         Unit());
}

long CNyrUnitSettingsAngle::GetCurrentSelection(const CUnitAngleComboBox& list) const
{
    return list.GetCurrentSelection();
}

int CNyrUnitSettingsAngle::SaveCurrentSelection(const CUnitAngleComboBox& list, QWidget* notifyRoot)
{
    const long old = Unit();
    if (!SaveUnit(list.GetCurrentSelection()))
        return 0;
    NotifyChange(notifyRoot, WM_NYR_UNIT_CHANGED_ANGLE, old, Unit());
    return 1;
}
