// SPDX-License-Identifier: MIT

#include "desktop/QueueTable.h"

#include <QApplication>
#include <QEvent>
#include <QHeaderView>
#include <QPainter>
#include <QPushButton>
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

class URLDelegate final : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& given, const QModelIndex& index) const override {
    QStyleOptionViewItem option = given;
    initStyleOption(&option, index);
    const QString url = std::exchange(option.text, {});
    const QStyle* style = option.widget->style();
    // Fusion draws the box of a tick in a shade of it, which is lost on the dark ground of a list.
    option.palette.setColor(QPalette::Window, option.palette.color(QPalette::PlaceholderText));
    style->drawControl(QStyle::CE_ItemViewItem, &option, painter, option.widget);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, &option, option.widget) + 1;
    const bool hasTick = option.features.testFlag(QStyleOptionViewItem::HasCheckIndicator);
    const int tick =
        hasTick ? style->pixelMetric(QStyle::PM_IndicatorWidth, &option, option.widget) + 2 * margin : 0;
    QRect room = option.rect.adjusted(tick + margin, 0, -margin, 0);
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

QAbstractItemDelegate* MakeURLDelegate(QObject* parent) {
  return new URLDelegate(parent);
}

QueueTable::QueueTable(QWidget* parent)
    : QTableView(parent),
      invitation_(new QWidget(viewport())),
      invitationIcon_(new QLabel(invitation_)),
      invitationText_(new QLabel(invitation_)),
      invitationButtons_(new QHBoxLayout) {
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
  invitationIcon_->setAlignment(Qt::AlignCenter);
  invitationIcon_->setPixmap(QApplication::windowIcon().pixmap(kInvitationIcon));
  invitationText_->setAlignment(Qt::AlignCenter);
  invitationText_->setTextFormat(Qt::PlainText);
  invitationText_->setWordWrap(true);
  invitationText_->setForegroundRole(QPalette::PlaceholderText);
  auto* rows = new QVBoxLayout(invitation_);
  rows->setSizeConstraint(QLayout::SetNoConstraint);
  rows->addStretch();
  rows->addWidget(invitationIcon_);
  rows->addWidget(invitationText_);
  rows->addLayout(invitationButtons_);
  rows->addStretch();
  followFont();
}

void QueueTable::setModel(QAbstractItemModel* model) {
  QTableView::setModel(model);
  if (model == nullptr) return;
  connect(model, &QAbstractItemModel::modelReset, this, &QueueTable::followModel);
  connect(model, &QAbstractItemModel::rowsInserted, this, &QueueTable::followModel);
  connect(model, &QAbstractItemModel::rowsRemoved, this, &QueueTable::followModel);
  followModel();
}

void QueueTable::setInvitation(const QString& text, const QList<QAction*>& actions) {
  text_ = text;
  if (!actions.isEmpty()) invitationButtons_->addStretch();
  for (QAction* action : actions) {
    auto* button = new QPushButton(action->icon(), action->iconText(), invitation_);
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    invitationButtons_->addWidget(button);
  }
  if (!actions.isEmpty()) invitationButtons_->addStretch();
  followModel();
}

// The buttons are for a queue that has nothing, not for one that is hidden.
void QueueTable::followModel() {
  const bool isEmpty = model() == nullptr || model()->rowCount() == 0;
  const auto* queue = qobject_cast<const QueueModel*>(model());
  const bool isFiltered = queue != nullptr && queue->isFiltered();
  const QString said = !isEmpty ? QString() : isFiltered ? tr("No URL passes the filter.") : text_;
  invitation_->setVisible(isEmpty);
  if (accessibleDescription() != said) setAccessibleDescription(said);
  if (!isEmpty) return;
  invitationText_->setText(said);
  for (int i = 0; i < invitationButtons_->count(); ++i) {
    if (QWidget* button = invitationButtons_->itemAt(i)->widget()) button->setHidden(isFiltered);
  }
  placeInvitation();
}

void QueueTable::placeInvitation() {
  invitation_->setGeometry(viewport()->rect());
  invitationIcon_->show();
  const int width = invitation_->width();
  invitationIcon_->setVisible(invitation_->layout()->totalHeightForWidth(width) <= invitation_->height());
}

RowRanges QueueTable::selectedRows() const {
  RowRanges ranges;
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    if (range.isValid()) ranges.push_back({range.top(), range.bottom()});
  }
  std::sort(ranges.begin(), ranges.end(), [](RowRange a, RowRange b) { return a.first < b.first; });
  return ranges;
}

void QueueTable::followFont() {
  const int height = fontMetrics().height() + kRowPadding;
  verticalHeader()->setMinimumSectionSize(height);
  verticalHeader()->setDefaultSectionSize(height);
  QFont large = font();
  large.setPointSizeF(large.pointSizeF() * 1.3);
  invitationText_->setFont(large);
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
  if (!isDropHighlighted_) return;
  QPainter painter(viewport());
  painter.setPen(QPen(palette().color(QPalette::Highlight), 3));
  painter.drawRect(viewport()->rect().adjusted(1, 1, -2, -2));
}

void QueueTable::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  placeInvitation();
}

TableOutlet::TableOutlet(FramePacer& pacer, QueueTable& table, std::function<void()> selectionDidChange)
    : table_(table), reload_(pacer, [this] { catchUp(); }), selection_(pacer, std::move(selectionDidChange)) {
  table_.setModel(&model_);
  table_.setItemDelegate(MakeURLDelegate(&table_));
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
  for (const RowRange& range : table_.selectedRows()) {
    // Between two rows that are shown there may be some that the filter hides.
    const int step = model_.isFiltered() ? 1 : range.last - range.first + 1;
    for (int row = range.first; row <= range.last; row += step) {
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
  if (selection.isEmpty()) selection_.flush();
}

}  // namespace quillforth::desktop
