#pragma once

#include <QPointer>
#include <string>

#include "nyr/platform/export.h"
#include "nyrwidgets/views/list_ctrl.h"

class CNyrReportView;
class CNyrReportViewPrivate;
class QMenu;

// One real column of a report view. The view owns it once added
// (AddRealCol). A column is on screen when it is neither hidden nor deleted;
// a deleted column keeps its real index and is skipped everywhere.
class NYR_EXPORT CNyrReportViewCol
{
public:
    // `hidden` is also the hidden default and `width` (pixels) also the
    // default width: what a restore of the defaults goes back to. `menu`
    // (not owned) is a pop-up menu of the column's own, merged into the
    // header context menu: the whole menu when `subMenuPos` is -1, else its
    // sub-menu at that position.
    CNyrReportViewCol(CNyrReportView* owner, int hidden, std::string label, int alignment = LVCFMT_LEFT,
                      int width = 80, QMenu* menu = nullptr, int subMenuPos = -1);
    virtual ~CNyrReportViewCol();
    CNyrReportViewCol(const CNyrReportViewCol&) = delete;
    CNyrReportViewCol& operator=(const CNyrReportViewCol&) = delete;

    CNyrReportView* Owner() const { return m_owner; }

    bool IsHidden() const { return m_hidden; }
    bool IsDeleted() const { return m_deleted; }
    bool IsVisible() const { return !m_hidden && !m_deleted; }
    bool GetHiddenDefault() const { return m_hiddenDefault; }
    void SetHiddenDefault(bool hidden) { m_hiddenDefault = hidden; }

    // 1 when the hidden flag equals `hide` (already, or after the change); 0
    // for a deleted column or when OnHideCol (called only with notify) vetoes.
    // Changes the model only: the view's HideRealCol updates the screen.
    int HideCol(int hide, int notify);
    // 1 when the column is deleted (already, or now); 0 when OnDeleteCol
    // (called only with notify) vetoes. Model only, as HideCol.
    int DeleteCol(int notify);

    const std::string& GetLabel() const { return m_label; }
    // Stores a changed label and renames the column on screen when it shows.
    void SetLabel(const std::string& label);
    // One of LVCFMT_LEFT, LVCFMT_RIGHT, LVCFMT_CENTER.
    int GetAlignment() const { return m_alignment; }
    void SetAlignment(int alignment);
    // Width in pixels; the view keeps it equal to the width on screen.
    int GetWidth() const { return m_width; }
    void SetWidth(int width);
    int GetWidthDefault() const { return m_widthDefault; }
    void SetWidthDefault(int width) { m_widthDefault = width; }
    // Screen position of the column's left edge, pixels (0 until shown).
    int GetLeft() const { return m_left; }
    void SetLeft(int left) { m_left = left; }
    // Position in the screen column order, as last read from the header after
    // the user moved a column (0 until then).
    int GetOrder() const { return m_order; }
    void SetOrder(int order) { m_order = order; }

    QMenu* GetMenu(int* subMenuPos = nullptr) const;
    void SetMenu(QMenu* menu, int subMenuPos = -1);

    // Two values of the application's own, never read by the view; they
    // start at 0 and -1.
    int GetUserData() const { return m_userData; }
    void SetUserData(int value) { m_userData = value; }
    int GetUserIndex() const { return m_userIndex; }
    void SetUserIndex(int value) { m_userIndex = value; }

    // Non-zero allows the change; the defaults allow.
    virtual int OnHideCol(int hide);
    virtual int OnDeleteCol();

private:
    // The owning view's parts adopt the column and keep the width the user
    // dragged on screen and the default order (report_view_p.h).
    friend class CNyrReportViewPrivate;

    CNyrReportView* m_owner;
    bool m_hidden;
    bool m_hiddenDefault;
    bool m_deleted = false;
    std::string m_label;
    int m_alignment;
    int m_width;
    int m_widthDefault;
    int m_left = 0;
    int m_order = 0;
    int m_orderDefault = 0;  // the default display order: the real index, or as HoldRealColsDefaults found it
    QPointer<QMenu> m_menu;
    int m_subMenuPos;
    int m_userData = 0;
    int m_userIndex = -1;
};
