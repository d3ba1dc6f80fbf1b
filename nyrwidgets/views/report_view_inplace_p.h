#pragma once

// The in-place editing of a report view's cells (see CNyrReportView,
// "In-place editing"): a child object of the view that watches its keys and
// clicks, opens the typed field over a cell and is the field's host.

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QTimer>

#include "nyrwidgets/input/input_control.h"

class CNyrReportView;

class CNyrReportViewInplace : public QObject
{
public:
    explicit CNyrReportViewInplace(CNyrReportView* view);
    ~CNyrReportViewInplace() override;

    int Begin(unsigned int realItem, unsigned int realCol);
    // With `save` as Enter (0 when the value is refused), else as Escape.
    int End(bool save);
    // The view is going away: the editor goes at once, unsaved, and no
    // event reaches the view from here on.
    void Detach();
    CNyrInputControl* Editor() const { return m_editor; }
    int Cell(unsigned int& realItem, unsigned int& realCol) const;

protected:
    bool eventFilter(QObject* watched, QEvent* e) override;
    // The editor's WM_NYR_INPUT_CONTROL_SAVE_VALUE_INLINE and _CANCEL_INLINE.
    bool event(QEvent* e) override;

private:
    CNyrReportView* m_view;
    QPointer<CNyrInputControl> m_editor;
    unsigned int m_realItem = 0;  // the cell being edited, while m_editor lives
    unsigned int m_realCol = 0;

    // The slow double click: a release on the cell of a press that may start
    // one arms the timer; a double click or another press disarms it.
    QTimer m_slowClick;
    bool m_pressed = false;        // a press came before (m_lastPress holds its time)
    unsigned long long m_lastPress = 0;
    bool m_candidate = false;      // the last press may start editing
    unsigned int m_clickItem = 0;  // its cell
    unsigned int m_clickCol = 0;
    QPoint m_clickPos;

    bool IsEditable(unsigned int realItem, unsigned int realCol) const;
    bool OnScreen(unsigned int realItem, unsigned int realCol) const;
    // The first editable column of the row from display position `visual`
    // on, going by `step`; -1 when none is.
    int EditableColFrom(unsigned int realItem, int visual, int step) const;
    int Store(long long how);
    void Close(bool focusView);
    void Place();
    void EditFocusedCell();
    void OnViewportMouse(QEvent* e);
};
