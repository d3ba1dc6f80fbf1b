#pragma once

// Private parts of CNyrListView shared by its source files and the report
// view's.

#include <QAbstractTableModel>
#include <Qt>
#include <string>
#include <vector>

class CNyrListView;

namespace nyr::views_detail {

// The Qt alignment (with vertical centring) of a column-format value.
Qt::Alignment QtAlignment(int lvcfmt);

}  // namespace nyr::views_detail

// The plain list control's model: columns and rows of texts that the model
// holds itself (list_view_model.cpp). A report view has its own model.
class CNyrListCtrlModel : public QAbstractTableModel
{
public:
    struct Column
    {
        std::string label;
        int alignment;
    };
    struct Row
    {
        std::vector<std::string> texts;  // one per column; shorter when the tail is empty
        quintptr data = 0;
        bool checked = false;
    };

    explicit CNyrListCtrlModel(const CNyrListView* view) : m_view(view) {}

    std::vector<Column> columns;
    std::vector<Row> rows;

    // A cell's text; empty past the end of its row's texts.
    const std::string& Text(int row, int col) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // The changes of the plain list, each with its model signals.
    void InsertColumnAt(int col, Column column);
    void RemoveColumnAt(int col);
    void InsertRowAt(int row, Row r);
    void RemoveRowAt(int row);
    void RemoveAllRows();
    void CellChanged(int row, int col);
    // Puts the rows in the order given (order[newRow] = oldRow); persistent
    // indexes (selection, focus) follow their rows.
    void ApplyRowOrder(const std::vector<int>& order);

private:
    const CNyrListView* m_view;
};
