// Writes a menu as text or as JSON while it is read. A menu may have hundreds of thousands of
// items, so only the last of its text is in memory.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "popup/menu_snapshot.h"

class MenuWriter {
  public:
    // Gets the text in parts that follow each other.
    using Taker = std::function<void(const std::string& part)>;

    explicit MenuWriter(Taker take) : take_(std::move(take)) {}
    virtual ~MenuWriter() = default;
    MenuWriter(const MenuWriter&) = delete;
    MenuWriter& operator=(const MenuWriter&) = delete;

    // Adds the next item. If its submenu is opened, the items in there follow, and end_submenu().
    void add(const ItemSnapshot& item, bool is_opened);
    void end_submenu();
    // Hands over what is left. Nothing may follow.
    void finish();

  protected:
    virtual void write_item(const ItemSnapshot& item, bool is_opened) = 0;
    virtual void write_end_of_submenu() {}
    virtual void write_end() {}

    // How many submenus are open.
    size_t level() const { return level_; }
    std::string& text() { return text_; }

  private:
    Taker take_;
    std::string text_;
    size_t level_ = 0;
};

// The menu as an indented tree, one line for each item.
class MenuText : public MenuWriter {
  public:
    using MenuWriter::MenuWriter;

  private:
    void write_item(const ItemSnapshot& item, bool is_opened) override;
    const std::string& title_of(const ItemSnapshot& item);
    const std::string& text_of_modifiers(unsigned long modifiers);

    std::string last_title_, last_printable_;
    std::map<unsigned long, std::string> modifier_texts_;  // of all modifiers so far
};

// The menu as a JSON array; all items need details. Bytes that are not UTF-8 become replacement
// characters.
class MenuJson : public MenuWriter {
  public:
    explicit MenuJson(Taker take);

  private:
    // The text around the title and the path of an item. Most items of a level share it.
    struct Frame {
        ItemSnapshot item;  // its title and its path are not the frame's
        bool is_opened;
        size_t level;
        std::string before_title, before_path, after_path;

        bool fits(const ItemSnapshot& other, bool other_is_opened, size_t other_level) const;
    };

    // The last of several texts, as JSON.
    class Quoted {
      public:
        const std::string& of(const std::string& value);

      private:
        std::string value_, text_;
    };

    void write_item(const ItemSnapshot& item, bool is_opened) override;
    void write_end_of_submenu() override;
    void write_end() override;
    const Frame& frame_for(const ItemSnapshot& item, bool is_opened);
    void end_array(size_t indentation);

    std::vector<bool> has_items_;  // of each open array
    std::vector<Frame> frames_;    // the last ones, the oldest of them at next_frame_
    size_t next_frame_ = 0;
    Quoted title_, path_;
};
