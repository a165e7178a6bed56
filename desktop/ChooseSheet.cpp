// SPDX-License-Identifier: MIT

#include "desktop/ChooseSheet.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLocale>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/QueueModel.h"
#include "desktop/ShownText.h"
#include "desktop/WidgetOutlets.h"
#include "net/URL.h"

namespace quillforth::desktop {

namespace {

constexpr std::size_t kSlice = 10'000;  // takes a frame or less

QString Number(std::size_t number) {
  return QLocale().toString(qulonglong{number});
}

}  // namespace

LinkModel::LinkModel(const app::UrlQueue& links)
    : links_(links), isTicked_(links.size(), true), tickedCount_(links.size()) {
  look_.setSingleShot(true);
  look_.callOnTimeout(this, &LinkModel::look);
}

void LinkModel::setFilter(const ListFilter& filter) {
  if (filter == filter_) return;
  beginResetModel();
  filter_ = filter;
  shown_.clear();
  next_ = 0;
  endResetModel();
  look_.stop();
  if (!filter_.isEmpty()) look();
  emit countsDidChange();
}

void LinkModel::look() {
  const std::size_t end = std::min(next_ + kSlice, links_.size());
  std::vector<std::uint32_t> found;
  for (; next_ < end; ++next_) {
    if (filter_.shows(links_.at(next_))) found.push_back(static_cast<std::uint32_t>(next_));
  }
  if (next_ < links_.size()) look_.start();
  if (!found.empty()) {
    beginInsertRows({}, rowCount(), rowCount() + static_cast<int>(found.size()) - 1);
    shown_.insert(shown_.end(), found.begin(), found.end());
    endInsertRows();
  }
  emit countsDidChange();
}

std::size_t LinkModel::linkAt(int row) const {
  const auto place = static_cast<std::size_t>(row);
  return filter_.isEmpty() ? place : shown_[place];
}

void LinkModel::setTicked(const RowRanges& rows, bool isTicked) {
  for (const RowRange& range : rows) {
    for (int row = range.first; row <= range.last; ++row) {
      auto tick = isTicked_[linkAt(row)];
      if (tick == isTicked) continue;
      tick = isTicked;
      isTicked ? ++tickedCount_ : --tickedCount_;
    }
    emit dataChanged(index(range.first, 0), index(range.last, 0), {Qt::CheckStateRole});
  }
  emit countsDidChange();
}

std::vector<std::size_t> LinkModel::unticked() const {
  std::vector<std::size_t> links;
  for (std::size_t link = 0; link < isTicked_.size(); ++link) {
    if (!isTicked_[link]) links.push_back(link);
  }
  return links;
}

int LinkModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  return static_cast<int>(filter_.isEmpty() ? links_.size() : shown_.size());
}

int LinkModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : 1;
}

Qt::ItemFlags LinkModel::flags(const QModelIndex& index) const {
  return QAbstractTableModel::flags(index) | Qt::ItemIsUserCheckable;
}

QVariant LinkModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  if (role == Qt::CheckStateRole) return isTicked(index.row()) ? Qt::Checked : Qt::Unchecked;
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  const QString url = platform::WithoutPassword(links_.at(linkAt(index.row())));
  return role == Qt::DisplayRole ? ShownText(url, QueueModel::kLongestShownURL) : ToolTipText(url);
}

bool LinkModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return false;
  setTicked({{index.row(), index.row()}}, value.toInt() == Qt::Checked);
  return true;
}

ChooseSheet::ChooseSheet(const app::UrlQueue& links, const classify::CExtensionMap& extensions,
                         QWidget* parent)
    : QDialog(parent),
      links_(links),
      extensions_(extensions),
      model_(links),
      text_(new QLineEdit(this)),
      kinds_(new KindsButton(this)),
      table_(new QueueTable(this)),
      counts_(new QLabel(this)),
      notice_(new QLabel(this)),
      tickAll_(new QPushButton(tr("&Tick All"), this)),
      untickAll_(new QPushButton(tr("&Untick All"), this)) {
  setWindowTitle(tr("Choose Links"));
  auto* page = new ElidedLabel(this);
  page->setWholeText(tr("Links of %1").arg(platform::WithoutCredentials(links.entryAt(0).page)));
  text_->setPlaceholderText(tr("Show just the URLs that hold this text"));
  text_->setAccessibleName(tr("Filter of the links"));
  text_->setClearButtonEnabled(true);
  table_->setAccessibleName(tr("Links of the page"));
  table_->setInvitation(tr("No URL passes the filter."));
  table_->setModel(&model_);
  table_->setItemDelegate(MakeURLDelegate(table_));
  counts_->setTextFormat(Qt::PlainText);
  notice_->setWordWrap(true);
  notice_->hide();
  auto* buttons = new QDialogButtonBox(this);
  queue_ = buttons->addButton(tr("&Queue Ticked"), QDialogButtonBox::AcceptRole);
  buttons->addButton(tr("&Cancel"), QDialogButtonBox::RejectRole)->setToolTip(tr("Queue none of them"));
  auto* filterRow = new QHBoxLayout;
  filterRow->addWidget(text_);
  filterRow->addWidget(kinds_);
  auto* tickRow = new QHBoxLayout;
  tickRow->addWidget(counts_, 1);
  for (QPushButton* button : {tickAll_, untickAll_}) {
    button->setToolTip(tr("All links that the filter shows"));
    button->setAutoDefault(false);
    tickRow->addWidget(button);
  }
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(page);
  rows->addWidget(notice_);
  rows->addLayout(filterRow);
  rows->addWidget(table_);
  rows->addLayout(tickRow);
  rows->addWidget(buttons);
  for (QObject* watched : {static_cast<QObject*>(text_), static_cast<QObject*>(table_)})
    watched->installEventFilter(this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(tickAll_, &QPushButton::clicked, this, [this] { tickShown(true); });
  connect(untickAll_, &QPushButton::clicked, this, [this] { tickShown(false); });
  connect(text_, &QLineEdit::textChanged, this, &ChooseSheet::filter);
  connect(kinds_, &KindsButton::kindsDidChange, this, &ChooseSheet::filter);
  connect(&model_, &LinkModel::countsDidChange, this, &ChooseSheet::showCounts);
  table_->setFocus();
  showCounts();
  resize(600, 420);
}

// The model goes before the table.
ChooseSheet::~ChooseSheet() {
  table_->setModel(nullptr);
}

void ChooseSheet::setNotice(const QString& text) {
  notice_->setText(text);
  notice_->show();
}

bool ChooseSheet::eventFilter(QObject* watched, QEvent* event) {
  const bool isKey = event->type() == QEvent::KeyPress;
  return (isKey && takesKey(watched, static_cast<QKeyEvent*>(event)->key())) ||
         QDialog::eventFilter(watched, event);
}

bool ChooseSheet::takesKey(const QObject* watched, int key) {
  if (watched == table_ && key == Qt::Key_Space) {
    const QModelIndex current = table_->currentIndex();
    if (!current.isValid()) return true;
    RowRanges rows = table_->selectedRows();
    if (rows.empty()) rows = {{current.row(), current.row()}};
    model_.setTicked(rows, !model_.isTicked(current.row()));
    return true;
  }
  if (watched != text_) return false;
  if (key == Qt::Key_Return || key == Qt::Key_Enter) return table_->setFocus(), true;
  if (key != Qt::Key_Escape || text_->text().isEmpty()) return false;
  text_->clear();
  return true;
}

void ChooseSheet::tickShown(bool isTicked) {
  const int count = model_.rowCount();
  if (count > 0) model_.setTicked({{0, count - 1}}, isTicked);
}

void ChooseSheet::filter() {
  model_.setFilter({text_->text(), kinds_->kinds(), &extensions_});
}

void ChooseSheet::showCounts() {
  counts_->setText(tr("Ticked: %1 of %2. Shown: %3.")
                       .arg(Number(model_.tickedCount()), Number(links_.size()),
                            Number(static_cast<std::size_t>(model_.rowCount()))));
  const bool isReady = !model_.isLooking() && model_.rowCount() > 0;
  tickAll_->setEnabled(isReady);
  untickAll_->setEnabled(isReady);
  queue_->setEnabled(model_.tickedCount() > 0);
}

}  // namespace quillforth::desktop
