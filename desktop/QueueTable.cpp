// SPDX-License-Identifier: MIT

#include "desktop/QueueTable.h"

#include <QApplication>
#include <QEvent>
#include <QHeaderView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <algorithm>
#include <utility>

#include "net/URL.h"

namespace quillforth::desktop {

namespace {

constexpr int kRowPadding = 6;  // above and below the text together
constexpr float kMuted = 0.62F;
constexpr int kInvitationIcon = 48;

// Where the last part of a URL begins: what is behind the last "/" that something stands behind.
qsizetype LastPart(const QString& url) {
  const qsizetype end = url.endsWith(u'/') ? url.size() - 2 : url.size() - 1;
  return end < 0 ? 0 : url.lastIndexOf(u'/', end) + 1;
}

/// Draws the last part of a URL as usual and the rest muted, and no password.
class URLDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& given, const QModelIndex& index) const override {
    QStyleOptionViewItem option = given;
    initStyleOption(&option, index);
    const QString url = std::exchange(option.text, {});
    const QStyle* style = option.widget->style();
    style->drawControl(QStyle::CE_ItemViewItem, &option, painter, option.widget);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, &option, option.widget) + 1;
    QRect room = option.rect.adjusted(margin, 0, -margin, 0);
    const QString shown =
        option.fontMetrics.elidedText(platform::WithoutPassword(url), Qt::ElideMiddle, room.width());
    const qsizetype last = LastPart(shown);
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const auto group = option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
    QColor color = option.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text);
    painter->save();
    painter->setFont(option.font);
    painter->setPen(color);
    const int headWidth = option.fontMetrics.horizontalAdvance(shown, static_cast<int>(last));
    painter->drawText(room.adjusted(headWidth, 0, 0, 0), Qt::AlignVCenter | Qt::TextSingleLine,
                      shown.sliced(last));
    color.setAlphaF(kMuted);
    painter->setPen(color);
    painter->drawText(room, Qt::AlignVCenter | Qt::TextSingleLine, shown.first(last));
    painter->restore();
  }
};

}  // namespace

QueueTable::QueueTable(QWidget* parent) : QTableView(parent) {
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setTextElideMode(Qt::ElideMiddle);
  setWordWrap(false);
  setShowGrid(false);
  setAlternatingRowColors(true);
  setTabKeyNavigation(false);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  horizontalHeader()->hide();
  horizontalHeader()->setStretchLastSection(true);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  followFont();
}

void QueueTable::followFont() {
  const int height = fontMetrics().height() + kRowPadding;
  verticalHeader()->setMinimumSectionSize(height);
  verticalHeader()->setDefaultSectionSize(height);
}

// In a table they go to the ends of a row.
QModelIndex QueueTable::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  const int rows = model() == nullptr ? 0 : model()->rowCount();
  const int column = std::max(currentIndex().column(), 0);
  if (action == MoveHome) return rows == 0 ? QModelIndex() : model()->index(0, column);
  if (action == MoveEnd) return rows == 0 ? QModelIndex() : model()->index(rows - 1, column);
  return QTableView::moveCursor(action, modifiers);
}

void QueueTable::setDropHighlighted(bool isHighlighted) {
  if (isDropHighlighted_ == isHighlighted) return;
  isDropHighlighted_ = isHighlighted;
  viewport()->update();
}

void QueueTable::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) followFont();
}

void QueueTable::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (model() == nullptr || model()->rowCount() == 0) paintInvitation();
  if (!isDropHighlighted_) return;
  QPainter painter(viewport());
  painter.setPen(QPen(palette().color(QPalette::Highlight), 3));
  painter.drawRect(viewport()->rect().adjusted(1, 1, -2, -2));
}

void QueueTable::paintInvitation() {
  QPainter painter(viewport());
  QFont large = font();
  large.setPointSizeF(large.pointSizeF() * 1.3);
  painter.setFont(large);
  painter.setPen(palette().color(QPalette::PlaceholderText));
  const QRect room = viewport()->rect();
  constexpr int kFlags = static_cast<int>(Qt::AlignCenter | Qt::TextWordWrap);
  const auto* queue = qobject_cast<const QueueModel*>(model());
  const QString said = queue != nullptr && queue->isFiltered() ? tr("No URL holds that text.") : invitation_;
  const QRect text = painter.boundingRect(room, kFlags, said);
  painter.drawText(text, kFlags, said);
  const QRect icon(room.center().x() - kInvitationIcon / 2, text.top() - kInvitationIcon * 5 / 4,
                   kInvitationIcon, kInvitationIcon);
  if (icon.top() > 0) QApplication::windowIcon().paint(&painter, icon);
}

TableOutlet::TableOutlet(FramePacer& pacer, QueueTable& table, std::function<void()> selectionDidChange)
    : table_(table), reload_(pacer, [this] { catchUp(); }), selection_(pacer, std::move(selectionDidChange)) {
  table_.setModel(&model_);
  table_.setItemDelegate(new URLDelegate(&table_));
  QObject::connect(table_.selectionModel(), &QItemSelectionModel::selectionChanged, &table_,
                   [this] { selectionChanged(); });
  QObject::connect(&model_, &QueueModel::modelAboutToBeReset, &table_,
                   [this] { selectionOverReset_ = selectedEntries(); });
  QObject::connect(&model_, &QueueModel::modelReset, &table_, [this] { restoreSelection(); });
}

TableOutlet::~TableOutlet() {
  table_.setModel(nullptr);
}

void TableOutlet::registerForDraggedTypes(const QStringList& /*types*/) {
  table_.window()->setAcceptDrops(true);  // the window takes drops for the table, which is most of it
}

std::vector<QItemSelectionRange> TableOutlet::selectedRanges() const {
  const QItemSelection selection = table_.selectionModel()->selection();
  std::vector<QItemSelectionRange> ranges(selection.begin(), selection.end());
  std::erase_if(ranges, [](const QItemSelectionRange& range) { return !range.isValid(); });
  std::sort(ranges.begin(), ranges.end(),
            [](const QItemSelectionRange& a, const QItemSelectionRange& b) { return a.top() < b.top(); });
  return ranges;
}

// A selection of which nothing waits any more is gone at once, so that no command can be given for it.
void TableOutlet::reloadData() {
  reload_.request();
  const Entries selected = selectedEntries();
  if (!selected.empty() && !isAnyQueued(selected)) table_.clearSelection();
}

void TableOutlet::catchUp() {
  isCatchingUp_ = true;
  model_.catchUp();
  isCatchingUp_ = false;
}

void TableOutlet::selectionChanged() {
  selection_.request();
  if (!isCatchingUp_) selection_.flush();
}

std::vector<std::size_t> TableOutlet::selectedRowIndexes() const {
  const Entries entries = target_ ? *std::exchange(target_, std::nullopt) : selectedEntries();
  std::vector<std::size_t> rows;
  for (const IdentifierRange& range : entries) {
    const std::size_t end = model_.queueRowFrom(range.last + 1);
    for (std::size_t row = model_.queueRowFrom(range.first); row < end; ++row) rows.push_back(row);
  }
  return rows;
}

Entries TableOutlet::selectedEntries() const {
  Entries entries;
  for (const QItemSelectionRange& range : selectedRanges()) {
    // Between two rows that are shown there may be some that the filter hides.
    const int step = model_.isFiltered() ? 1 : range.height();
    for (int row = range.top(); row <= range.bottom(); row += step) {
      entries.push_back({model_.identifier(row), model_.identifier(row + step - 1)});
    }
  }
  return entries;
}

Entries TableOutlet::firstEntry() const {
  if (model_.isFiltered() ? source_->numberOfRows() == 0 : model_.rowCount() == 0) return {};
  const std::uint64_t first = model_.isFiltered() ? source_->identifierOfRow(0) : model_.identifier(0);
  return {{first, first}};
}

// The last ones wait longest.
bool TableOutlet::isAnyQueued(const Entries& entries) const {
  return std::any_of(entries.rbegin(), entries.rend(), [this](const IdentifierRange& range) {
    return model_.isAnyQueued(range.first, range.last);
  });
}

void TableOutlet::runFor(const Entries& entries, const std::function<void()>& command) {
  target_ = entries;
  command();
  target_.reset();
}

void TableOutlet::selectFrom(std::uint64_t identifier) {
  reload_.flush();
  const int row = std::min(model_.firstRowFrom(identifier), model_.rowCount() - 1);
  if (row >= 0 && !table_.selectionModel()->hasSelection()) table_.selectRow(row);
}

QStringList TableOutlet::selectedURLs() const {
  QStringList urls;
  for (const std::size_t row : selectedRowIndexes()) urls.append(source_->objectValueForRow(row));
  return urls;
}

void TableOutlet::restoreSelection() {
  QItemSelection selection;
  for (const IdentifierRange& range : std::exchange(selectionOverReset_, {})) {
    const int first = model_.firstRowFrom(range.first);
    const int end = model_.firstRowFrom(range.last + 1);
    if (first < end) selection.append(QItemSelectionRange(model_.index(first, 0), model_.index(end - 1, 0)));
  }
  table_.selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
  selection_.request();
}

}  // namespace quillforth::desktop
