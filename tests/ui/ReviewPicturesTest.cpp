#include "ui/ReviewFixture.h"
#include "ui/TakePicture.h"

// Pictures of the review page: see PicturesTest.cpp.

using namespace zuvo;
using namespace zuvo::tests;

namespace {

class ReviewPictures : public ReviewFixture {
protected:
    void take(const QString& name) { takePicture(*driver, name); }
};

} // namespace

TEST_F(ReviewPictures, list) {
    openReview();
    givenTranscript();
    take(QStringLiteral("05-discovery-a-list-closed"));
    driver->click(QStringLiteral("segmentCard1"));
    settle();
    take(QStringLiteral("05-discovery-a-list-open"));
    driver->click(QStringLiteral("playButton"));
    sound.pass(14.0);
    take(QStringLiteral("05-discovery-a-list"));
    driver->press(Qt::Key_Down);
    take(QStringLiteral("05-discovery-a-list-keyboard"));
    driver->resize(900, 600);
    take(QStringLiteral("05-discovery-a-list-minimum-window"));
}

TEST_F(ReviewPictures, drag) {
    openReview();
    const auto from = middleOf(QStringLiteral("segmentCard0"));
    pressAt(from);
    moveTo(from + QPoint(0, 10));
    moveTo(from + QPoint(0, 100));
    take(QStringLiteral("05-discovery-d-drag"));
    releaseAt(from + QPoint(0, 100));
}

TEST_F(ReviewPictures, echo) {
    openReview();
    givenTranscript();
    driver->click(QStringLiteral("echoTab"));
    take(QStringLiteral("05-discovery-b-echo"));
    driver->click(QStringLiteral("searchField"));
    driver->type(QStringLiteral("mar"));
    driver->hover(QStringLiteral("transcriptLine2"));
    take(QStringLiteral("05-discovery-b-echo-search"));
}

TEST_F(ReviewPictures, map) {
    openReview();
    givenTranscript();
    driver->click(QStringLiteral("mapButton"));
    ASSERT_TRUE(driver->waitFor(QStringLiteral("mapCard0")));
    page->togglePlay(4);
    driver->hover(QStringLiteral("mapCard4"));
    take(QStringLiteral("05-discovery-c-map"));
    driver->resize(900, 600);
    take(QStringLiteral("05-discovery-c-map-minimum-window"));
    driver->resize(2560, 1440);
    take(QStringLiteral("05-discovery-c-map-large-window"));
    driver->click(QStringLiteral("listButton"));
    take(QStringLiteral("05-discovery-a-list-large-window"));
}
