#pragma once

#include <QHeaderView>
#include <memory>
#include <vector>

#include "nyr/platform/export.h"

// The column header of the library's list views: draws a direction mark on
// each sort column (an arrow up for ascending, down for descending) and,
// when more than one column sorts, the column's rank (1, 2, 3) beside it.
// Columns are the header's sections (the view's screen columns).
class NYR_EXPORT CNyrHeaderCtrlSort : public QHeaderView
{
    Q_OBJECT
public:
    struct SORT_COL
    {
        int column = -1;      // screen column
        int ascending = 1;    // non-zero: ascending
    };

    explicit CNyrHeaderCtrlSort(QWidget* parent = nullptr);
    ~CNyrHeaderCtrlSort() override;

    // Marks these columns, the first as the primary key. Entries for columns
    // the header does not have are kept but not drawn.
    void SetSortColumns(const std::vector<SORT_COL>& columns);
    // Marks one column only.
    void SetSortColumn(int column, int ascending);
    // Removes all marks.
    void NoSort();
    const std::vector<SORT_COL>& GetSortColumns() const;
    // Redraws the marks (after the sections moved or changed).
    void UpdateCurrentSortedColumns();

protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sectionSizeFromContents(int logicalIndex) const override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
