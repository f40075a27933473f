// TARN Review in a language of longer words: every text of the window is translated, none is cut.
// What is said of a season (findings, the report) is made by libraries that know one language only.
#include <algorithm>

#include "ReviewWindow.h"
#include "support/PseudoLanguage.h"

namespace {

class ReviewTranslation : public ReviewWindow {
protected:
    ~ReviewTranslation() override {
        window_.reset();
        EXPECT_EQ(language_.Missing().join(u'\n').toStdString(), "") << "looked up in vain";
    }
    // Of what the season says, nothing counts: it stands in grids and in boxes of text.
    static void ExpectWhole(const QWidget& window) {
        QCoreApplication::processEvents();
        EXPECT_EQ(support::Cut(window).join(u'\n').toStdString(), "");
        QStringList untranslated;
        support::ForEachText(window, [&](const QWidget& widget, const QString& text) {
            if (qobject_cast<const QAbstractButton*>(&widget) != nullptr &&
                !support::IsTranslated(text)) {
                untranslated += text;
            }
        });
        EXPECT_EQ(untranslated.join(u'\n').toStdString(), "");
    }

    support::PseudoLanguage language_;
};

TEST_F(ReviewTranslation, EachPage) {
    Run(Write("GPFOR26.FCD", tarn_test::SoundSeason()));
    for (int page = 0; page < Pages().count(); ++page) {
        SCOPED_TRACE(page);
        Pages().setCurrentIndex(page);
        EXPECT_TRUE(support::IsTranslated(Pages().tabText(page)));
        ExpectWhole(*window_);
    }
}

TEST_F(ReviewTranslation, DialogOfTheNewYear) {
    Run(Write("GPFOR26.FCD", tarn_test::SoundSeason()));
    support::Answers answers;
    bool seen = false;
    answers.Then([&seen](QWidget& dialog) {
        seen = true;
        ExpectWhole(dialog);
        QMetaObject::invokeMethod(&dialog, "reject");
    });
    Click("cmdNewYear");
    EXPECT_TRUE(seen);
}

TEST_F(ReviewTranslation, RefusedFile) {
    support::WriteBytes(folder_.CostsPath(QStringLiteral("[x].fcd")), "no data file");
    support::Answers answers;
    answers.See([](QWidget& box) { EXPECT_EQ(support::Cut(box).join(u'\n').toStdString(), ""); });
    Run(std::filesystem::path(folder_.CostsPath(QStringLiteral("[x].fcd")).toStdString()));
    EXPECT_TRUE(QTest::qWaitFor([&answers] { return !answers.Messages().empty(); }));
    ExpectWhole(*window_);
}

}  // namespace
