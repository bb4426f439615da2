// The menus that the presenter shows now. Main thread.
#pragma once

#include <vector>

#include "accessibility/open_menus.h"

class ShownMenus : public OpenMenus {
  public:
    std::string application() const override;
    size_t levels() const override;
    OpenLevel level(size_t level) const override;
    Area level_area(size_t level) const override;
    OpenRow row(size_t level, int row) const override;
    Area row_area(size_t level, int row) const override;
    RowPlace row_place(size_t level, int row) const override;
    int row_at(size_t level, MenuPoint point) const override;
    Area text_area(size_t level, int row, size_t begin, size_t end) const override;
    size_t text_at(size_t level, int row, MenuPoint point) const override;
    bool highlight(size_t level, int row) override;
    bool pick(size_t level, int row) override;
    bool open_submenu(size_t level, int row) override;
    bool close_submenu(size_t level, int row) override;
    bool write(size_t level, int row, const std::string& text, size_t caret,
               size_t anchor) override;
    void copy(const std::string& text) override;
    std::string copied() override;

  private:
    // The separators of the rows that were asked for last, because a reader asks for row after row.
    mutable unsigned revision_ = 0;
    mutable std::vector<int> separators_;
};
