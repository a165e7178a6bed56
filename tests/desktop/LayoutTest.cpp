// SPDX-License-Identifier: MIT
//
// Every window in every language, at the size it opens with and as small as it goes: nothing is cut off,
// nothing overlaps, no two controls answer to one key.

#include <QMenuBar>
#include <QTabWidget>

#include "desktop/AddSheet.h"
#include "desktop/ChooseSheet.h"
#include "desktop/MessageSheets.h"
#include "desktop/Translations.h"
#include "desktop/WidgetOutlets.h"
#include "tests/desktop/DesktopFixture.h"

namespace quillforth::tests {
namespace {

QSize NeededSize(const QWidget& widget) {
  const auto* label = qobject_cast<const QLabel*>(&widget);
  if (label != nullptr && label->wordWrap()) return {0, label->heightForWidth(label->width())};
  const bool elides = qobject_cast<const desktop::ElidedLabel*>(label) != nullptr;
  const bool showsText = label != nullptr || qobject_cast<const QAbstractButton*>(&widget) != nullptr;
  return showsText && !elides ? widget.sizeHint() : widget.minimumSizeHint();
}

void Look(const QWidget& parent, QStringList& keys) {
  QRegion taken;
  for (QWidget* child : parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
    if (!child->isVisible() || child->isWindow()) continue;
    SCOPED_TRACE(child->metaObject()->className() + (' ' + child->objectName().toStdString()));
    const QSize needed = NeededSize(*child).boundedTo(child->maximumSize());
    EXPECT_TRUE(child->width() >= needed.width() && child->height() >= needed.height()) << "is cut off";
    EXPECT_TRUE(parent.rect().contains(child->geometry())) << "leaves its parent";
    EXPECT_FALSE(taken.intersects(child->geometry())) << "overlaps";
    taken += child->geometry();
    keys.append(QKeySequence::mnemonic(child->property("text").toString()).toString());
    auto* bar = qobject_cast<QMenuBar*>(child);
    for (QAction* action : bar != nullptr ? bar->actions() : QList<QAction*>()) {
      keys.append(QKeySequence::mnemonic(action->text()).toString());
      EXPECT_TRUE(bar->rect().contains(bar->actionGeometry(action)));
    }
    const bool isWhole = child->inherits("QAbstractSpinBox") || bar != nullptr ||
                         child->inherits("QAbstractScrollArea") || child->inherits("QLineEdit");
    if (!isWhole) Look(*child, keys);
  }
}

// The texts of windows are those of the language in which they are made.
class InLanguage : public ::testing::WithParamInterface<QLocale::Language> {
  desktop::Translations translations_{QLocale(GetParam())};
};

class LayoutTest : public InLanguage, public DesktopFixture {};

TEST_P(LayoutTest, NothingIsCutOffOrOverlaps) {
  platform::AuthenticationChallenge challenge;
  challenge.realm = QString(300, u'm');
  challenge.previousFailureCount = 1;
  desktop::AuthenticationSheet sheet(challenge, QString(), nullptr);
  const QString folder = QString(1000, u'm');
  auto* box = desktop::MakeMessageBox({folder, folder, folder.left(9), {}}, QMessageBox::Warning, &window());
  desktop::AddSheet add(QStringList(9, QStringLiteral("a.test")) + QStringList(9, QStringLiteral("file:///")),
                        nullptr);
  app::UrlQueue links;
  links.append(folder, folder);
  desktop::ChooseSheet choose(links, desktop_.controller().extensionMap(), nullptr);
  QList<QWidget*> windows = {&window(), &sheet, &add, &choose};
  for (QDialog* dialog : window().findChildren<QDialog*>()) windows.append(dialog);
  ASSERT_EQ(windows.size(), 7);
  ASSERT_TRUE(RunLoopUntil([this] { return !find<QLabel>("countTextField").text().isEmpty(); }));
  for (const char* name : {"filterRow", "cancelWaitButton", "currentURLTextField", "fileDownloadProgressBar",
                           "fileDownloadCancelButton"}) {
    find<QWidget>(name).show();
  }
  for (QWidget* shown : windows) {
    shown->show();
    EXPECT_TRUE(shown != box || box->width() < 800) << box->width();
    for (const QSize& size : {shown->size(), QSize(1, 1)}) {
      shown->resize(size);
      auto* pages = shown->findChild<QTabWidget*>();
      for (int page = 0; page < (pages == nullptr ? 1 : pages->count()); ++page) {
        if (pages != nullptr) pages->setCurrentIndex(page);
        QApplication::processEvents();
        QStringList keys;
        Look(*shown, keys);
        keys.removeAll(QString());
        EXPECT_EQ(keys.removeDuplicates(), 0) << keys.join(u' ').toStdString();
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, LayoutTest,
                         ::testing::Values(QLocale::English, QLocale::German, QLocale::French));

}  // namespace
}  // namespace quillforth::tests
