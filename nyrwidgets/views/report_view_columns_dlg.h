#pragma once

#include <QDialog>
#include <memory>
#include <vector>

#include "nyr/platform/export.h"

class CNyrReportView;
class QCheckBox;
class QPushButton;
class QTableWidget;

// The "&Columns..." dialog of a report view: every column that is not
// deleted, one row each, with a check box that views or hides it and its
// width in pixels (0 to 32767, edited in place), in the order they show:
// the visible columns in display order, then the hidden ones in real order.
// "[All columns]" above the list checks or clears every column at once (it
// shows partly checked when some are). Move Up and Move Down move the current
// row; the place of a row among the checked ones is its display position.
// Defaults puts back every column's hidden default, default width and
// default order (CNyrReportView::HoldRealColsDefaults). OK is disabled while
// no column is checked, so that the view always keeps a header.
//
// The view's ColumnsDlgStyle says what may change: without
// ColumnsDlgVisibility the check boxes are fixed, without ColumnsDlgWidth the
// widths, without ColumnsDlgOrder the move buttons and without
// ColumnsDlgDefaults the defaults button are gone. The dialog changes
// nothing itself: CNyrReportView::ColumnsDialog applies GetColumns.
class NYR_EXPORT CNyrReportViewColumnsDlg : public QDialog
{
    Q_OBJECT
public:
    struct COLUMN
    {
        unsigned int realCol = 0;
        bool visible = true;
        int width = 0;  // pixels
    };

    explicit CNyrReportViewColumnsDlg(CNyrReportView* view, QWidget* parent = nullptr);
    ~CNyrReportViewColumnsDlg() override;

    // The rows as they stand, top to bottom.
    std::vector<COLUMN> GetColumns() const;
    // Replaces the rows (unknown or deleted columns are skipped).
    void SetColumns(const std::vector<COLUMN>& columns);

    // Move the current row one place up or down.
    void MoveUp();
    void MoveDown();
    void SetDefaults();

    QTableWidget* ColumnList() const;
    QCheckBox* AllColumnsBox() const;
    QPushButton* MoveUpButton() const;
    QPushButton* MoveDownButton() const;
    QPushButton* DefaultsButton() const;
    QPushButton* OkButton() const;

private:
    struct Private;
    std::unique_ptr<Private> d;

    void MoveRow(int from, int to);
    void UpdateStates();
};
