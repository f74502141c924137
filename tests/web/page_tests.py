"""Opens album folders by their file addresses in Chromium, as a reader does, and checks that nothing of the record is lost."""

import datetime
import json
import os
import tempfile
import unittest

import album_fixture as fixture
from page_reading import LivePage, Page

RESOURCES = os.environ.get("QUILLBOOK_WEB") or os.path.join(os.path.dirname(__file__), "..", "..", "resources", "Web")

# Runs in the page once it stands, with virtual time; what it returns is left on the html element.
PROBE = """
addEventListener("load", async () => {
  const rest = (time) => new Promise((done) => setTimeout(done, time));
  const leave = (result) => { document.documentElement.dataset.result = JSON.stringify(result); };
  try { await rest(200); leave(await (%s)(rest)); } catch (error) { leave({ error: error.stack }); }
});
"""

LOOK_FOR_DAMAGE = """async () => ({
  hacked: String(window.hacked),
  outside: performance.getEntriesByType("resource").map((entry) => entry.name).filter((name) => !name.startsWith("file:")),
})"""

TRY_TO_BREAK_OUT = """async (rest) => {
  const stopped = [];
  addEventListener("securitypolicyviolation", (event) => stopped.push(event.effectiveDirective));
  const inline = document.createElement("script");
  inline.textContent = "window.hacked = 1";
  document.head.append(inline);
  new Image().src = "https://example.invalid/a.png";
  fetch("https://example.invalid/").catch(() => {});
  document.body.insertAdjacentHTML("beforeend", "<img src=x onerror='window.hacked = 2'>");
  console.error("A line of the test's own");
  await rest(500);
  return { hacked: String(window.hacked), stopped };
}"""

WALK_THROUGH_LONG_LIST = """async () => {
  const rest = (time) => new Promise((done) => setTimeout(done, time));
  const rows = () => Array.from(document.querySelectorAll(".row"));
  const top = (row) => row.getBoundingClientRect().top;
  const indexes = () => rows().map((row) => Number(row.dataset.index));
  const inSight = () => rows().filter((row) => top(row) < innerHeight && row.getBoundingClientRect().bottom > 60);
  const press = async (place) => { document.querySelectorAll(".bar-actions button")[place].click(); await rest(400); };
  const result = { atStart: indexes() };
  await press(1);
  const last = inSight().pop();
  result.atEnd = { index: Number(last.dataset.index), below: last.getBoundingClientRect().bottom - innerHeight };
  result.height = document.querySelector(".track").getBoundingClientRect().height;
  const reply = document.querySelector("button.reply");
  result.replyTarget = Number(reply.closest(".row").dataset.index) - 1200;
  reply.click();
  await rest(400);
  const found = document.querySelector(".is-found");
  const focused = document.activeElement === found;
  result.found = { index: Number(found.dataset.index), inSight: inSight().includes(found), focused };
  result.worstMove = 0;
  for (let step = 0; step < 40; step++) {
    const eye = inSight()[1];
    const before = top(eye);
    scrollBy(0, -150);
    await rest(40);
    result.worstMove = Math.max(result.worstMove, Math.abs(top(eye) - before - 150));
  }
  await rest(400);
  const eye = inSight()[1];
  const before = top(eye);
  rows()[0].style.paddingTop = "500px";
  await rest(400);
  result.moveWhenOneAboveGrew = Math.abs(top(eye) - before);
  const consecutive = indexes();
  result.isConsecutive = consecutive.every((index, place) => index === consecutive[0] + place);
  await press(0);
  result.backAtStart = indexes()[0];
  dispatchEvent(new Event("beforeprint"));
  result.printed = indexes().length;
  dispatchEvent(new Event("afterprint"));
  await rest(200);
  result.afterPrint = indexes();
  return result;
}"""


ALBUMS = {
    "every case": {"record": fixture.every_case(), "probe": PROBE % LOOK_FOR_DAMAGE, "height": 9000},
    "German": {"language": "de", "record": fixture.conversation([
        fixture.message(9, fixture.MIA, "Hallo", "2026-04-30T09:00:00Z", editedAt="2026-05-01T09:30:00Z")])},
    "empty": {"record": fixture.conversation([], participants=[], sourceMessageCount=0)},
    "no data": {"record": fixture.conversation([]), "with_data": False},
    "hostile scripts": {"record": fixture.conversation([]), "probe": PROBE % TRY_TO_BREAK_OUT},
    "long": {"record": fixture.many_messages(2600), "walk": WALK_THROUGH_LONG_LIST},
}


def open_album(name):
    settings = dict(ALBUMS[name])
    height = settings.pop("height", 800)
    walk = settings.pop("walk", None)
    with tempfile.TemporaryDirectory(prefix="quillbook-album-") as folder:
        fixture.write_album(folder, RESOURCES, **settings)
        return LivePage(folder, walk) if walk else Page(folder, height)


class PageTest(unittest.TestCase):
    """The claims of one class are about one album, opened once."""

    album = ""
    page = None

    @classmethod
    def setUpClass(cls):
        if cls.album:
            cls.page = open_album(cls.album)

    @property
    def result(self):
        return json.loads(self.page.html.attributes["data-result"])


class EveryCase(PageTest):
    album = "every case"

    # Number of a message: its words, one text for each bubble.
    WORDS = {
        1: ["Are we still on for the lake?"],
        3: ["I can borrow the big tent"],
        5: ["Yes, and see https://example.org/lake?a=1&b=2."],
        7: [fixture.HOSTILE],
        9: ["Seven is perfect"],
        11: ["Taken back"],
        13: [],
        15: ["Home safe"],
        17: [],
        19: ["Before", "behind"],
        21: [],
        23: [],
        25: [],
        27: ["Half of"],
        29: [],
        31: [],
        33: ["Is this the campsite?"],
        35: ["Who am I?"],
        37: ["🎉🎉"],
        39: ["one\u2028two\u2029three \u202Edesrever\u202C javascript:alert(1)"],
        41: [fixture.LONG_WORD],
        43: ["  two lines\n and blanks  "],
        45: ["Far ahead"],
        47: ["No such day"],
        49: ["Later field"],
    }

    def test_every_message_stands_once_and_in_order(self):
        numbers = [int(article.attributes["data-id"]) for article in self.page.root.all("article")]
        self.assertEqual(numbers, list(self.WORDS))

    def test_every_text_stands_to_the_letter(self):
        for number, words in self.WORDS.items():
            with self.subTest(number):
                self.assertEqual(self.page.message(number).texts("p", "words"), words)

    def test_words_take_their_own_direction(self):
        for words in self.page.root.all("p", "words"):
            self.assertEqual(words.attributes["dir"], "auto")

    def test_every_message_names_its_sender(self):
        names = {fixture.MIA: "Mia Okafor", fixture.JONAS: "Jonas <i>Lindqvist</i>", "me": "Me", None: "Unknown sender",
                 "participant-nobody": "Unknown sender (participant-nobody)"}
        for record in fixture.every_case()["messages"]:
            with self.subTest(record["id"]):
                name = self.page.message(record["id"]).one("bdi", "sender-name").text
                self.assertEqual(name, names[record.get("senderID")])

    def test_own_messages_stand_on_their_own_side(self):
        for record in fixture.every_case()["messages"]:
            side = "is-own" if record["isFromMe"] else "is-other"
            self.assertIn(side, self.page.message(record["id"]).classes)

    def test_text_services_have_their_own_colour(self):
        self.assertIn("is-text-service", self.page.message(9).classes)
        self.assertNotIn("is-text-service", self.page.message(5).classes)

    def test_title_stands_in_window_and_header(self):
        title = "Lake & <weekend> \"it's\""
        self.assertEqual(self.page.root.one("title").text, title)
        self.assertEqual(self.page.root.one("h1").text, title)

    def test_language_is_the_pages(self):
        self.assertEqual(self.page.html.attributes["lang"], "en")

    def test_days_are_told_in_the_readers_calendar(self):
        def day(moment):
            local = datetime.datetime.fromisoformat(moment).astimezone()
            week = ["Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"]
            return f"{week[local.weekday()]}, {['April', 'May'][local.month - 4]} {local.day}, {local.year}"

        headings = [day("2026-04-30T09:00:00+00:00"), day("2026-05-01T08:00:00+00:00"), "Saturday, January 1, 10000",
                    "Unknown date", day("2026-05-01T09:00:00+00:00")]
        self.assertEqual(self.page.root.texts("h2", "day"), headings)

    def test_every_message_tells_its_time(self):
        for record in fixture.every_case()["messages"][:-3]:
            local = datetime.datetime.fromisoformat(record["date"].replace("Z", "+00:00")).astimezone()
            expected = f"{(local.hour + 11) % 12 + 1}:{local.minute:02} {'AM' if local.hour < 12 else 'PM'}"
            found = next(self.page.message(record["id"]).all("time"))
            self.assertEqual(" ".join(found.text.split()), expected)
            self.assertEqual(found.attributes["datetime"], record["date"])

    def test_a_date_that_cannot_be_read_is_shown_as_it_stands(self):
        self.assertEqual(self.page.message(47).one("time").text, "yesterday")

    def test_reactions_are_settled_and_say_who(self):
        article = self.page.message(5)
        words = ["Loved by Mia Okafor and Jonas <i>Lindqvist</i>", "Reaction by Unknown sender", "Reaction by Me"]
        self.assertEqual([badge.attributes["aria-label"] for badge in article.all("button", "reaction")], words)
        self.assertEqual(article.one("ul", "reaction-people").texts("li"), words)
        self.assertEqual(article.texts("span", "reaction-count"), ["2"])

    def test_a_reply_quotes_what_it_answers(self):
        reply = self.page.message(9).one("button", "reply")
        self.assertEqual(reply.one("bdi", "reply-sender").text, "Reply to Jonas <i>Lindqvist</i>")
        self.assertEqual(reply.one("span", "reply-words").text, fixture.HOSTILE)

    def test_a_reply_to_nothing_says_so(self):
        self.assertEqual(self.page.message(15).one("p", "reply").text, "Reply to an earlier message")

    def test_an_edited_message_says_so_with_its_time(self):
        mark = self.page.message(9).one("time", "mark-edited")
        self.assertEqual(mark.text, "Edited")
        self.assertEqual(mark.attributes["datetime"], "2026-05-01T09:30:00Z")
        self.assertTrue(mark.attributes["title"].startswith("Edited on May 1, 2026"))
        self.assertEqual(len(list(self.page.root.all("time", "mark-edited"))), 1)

    def test_an_unsent_message_says_so_and_keeps_its_words(self):
        for number in (11, 13):
            self.assertEqual(self.page.message(number).one("time", "mark-unsent").text, "Unsent")
        self.assertEqual(self.page.message(13).one("div", "is-note").text, "This message was unsent.")

    def test_a_subject_stands_above_its_words(self):
        self.assertEqual(self.page.message(7).one("p", "subject").text, "Subject <b>of</b> it")
        self.assertEqual(list(self.page.message(49).all("p", "subject")), [])

    def test_a_body_that_could_not_be_read_says_so(self):
        notes = {25: "This message could not be read.", 27: "Only part of this message could be read.",
                 29: "This message has no text.", 31: "This message has no text."}
        for number, note in notes.items():
            self.assertEqual(self.page.message(number).one("div", "is-note").text, note)

    def test_no_mark_of_an_attachment_is_shown(self):
        self.assertNotIn(fixture.MARK, self.page.root.one("main").text)

    def test_a_picture_stands_in_its_place(self):
        link = self.page.message(17).one("a", "picture")
        image = link.one("img")
        self.assertEqual(image.attributes["src"], "attachments/Sunset%20%231%2050%25%3F.png")
        self.assertEqual(link.attributes["href"], image.attributes["src"])
        self.assertEqual(image.attributes["alt"], "Sunset #1 50%?.png")
        self.assertEqual((image.attributes["width"], image.attributes["height"]), ("352", "264"))

    def test_words_stand_round_their_attachment(self):
        stack = self.page.message(19).one("div", "stack")
        self.assertTrue(stack.text.startswith("Before"))
        self.assertLess(stack.text.index("IMG_2042.heic"), stack.text.index("behind"))

    def test_a_picture_that_the_browser_cannot_show_becomes_a_tile(self):
        tile = self.page.message(19).one("a", "tile")
        self.assertEqual(tile.attributes["href"], "attachments/IMG_2042.heic")
        self.assertIn("This browser cannot show this file.", tile.text)
        self.assertIn("Open file", tile.text)

    def test_a_sound_that_the_browser_cannot_play_becomes_a_tile(self):
        tile = self.page.message(23).one("a", "tile")
        self.assertEqual(tile.one("bdi", "tile-name").text, "Voice.amr")
        self.assertIn("This browser cannot show this file.", tile.text)

    def test_a_sound_has_a_player_and_a_name(self):
        figure = self.page.message(23).one("figure")
        self.assertEqual(figure.one("audio").attributes["src"], "attachments/Hum.wav")
        self.assertEqual(figure.one("figcaption").text, "Hum.wav")

    def test_a_document_is_a_tile_with_name_kind_and_size(self):
        tile = self.page.message(21).one("a", "tile")
        self.assertEqual(tile.attributes["href"], "attachments/Packing%20list.pdf")
        self.assertEqual(tile.one("bdi", "tile-name").text, "Packing list.pdf")
        self.assertEqual(" ".join(tile.one("span", "tile-facts").text.split()), "Document · PDF · 184 kB")

    def test_an_attachment_that_is_not_in_the_album_is_named(self):
        tiles = list(self.page.message(21).all("div", "is-absent"))
        self.assertEqual([tile.one("bdi", "tile-name").text for tile in tiles], ["IMG_0007.MOV", "IMG_0008.jpg"])
        self.assertIn("Missing: this file is not in the album.", tiles[0].text)
        self.assertIn("This file could not be read and is not in the album.", tiles[1].text)

    def test_a_path_that_leaves_the_album_is_not_followed(self):
        self.assertEqual(self.page.message(23).one("div", "is-absent").one("bdi", "tile-name").text, "Escape.txt")
        for element in self.page.root.all():
            self.assertNotIn("..", element.attributes.get("href", "") + element.attributes.get("src", ""))

    def test_only_web_addresses_become_links(self):
        links = [link for words in self.page.root.all("p", "words") for link in words.all("a")]
        self.assertEqual([link.attributes["href"] for link in links], ["https://example.org/lake?a=1&b=2"])
        self.assertEqual(links[0].attributes["rel"], "noopener noreferrer")

    def test_only_emoji_stand_large_and_without_a_bubble(self):
        self.assertIn("is-large", self.page.message(37).one("div", "bubble").classes)
        self.assertEqual(len(list(self.page.root.all("div", "is-large"))), 1)

    def test_people_have_pictures_or_initials(self):
        first, second, third = self.page.root.one("div", "cover-pictures").all("span", "avatar")
        self.assertEqual(first.one("img").attributes["src"], "assets/avatars/participant--15550142.png")
        self.assertEqual(second.text, "J")
        self.assertEqual(len(list(third.all("svg"))), 1)

    def test_the_album_tells_about_itself(self):
        about = self.page.root.one("dialog")
        facts = dict(zip(about.texts("dt"), about.texts("dd")))
        self.assertEqual(facts["Title"], "Lake & <weekend> \"it's\"")
        self.assertEqual(facts["Service"], "iMessage")
        self.assertEqual(facts["Messages"], "25")
        self.assertEqual(facts["Records in the source"], "30")
        self.assertEqual(facts["Attachments"].split("\n"), ["8", "5 in the album", "2 missing", "1 unreadable"])
        self.assertTrue(facts["Album made on"].startswith("November 1"))
        self.assertEqual(facts["Made on system"], "Version 15.2 (Build 24C101)")
        self.assertEqual(facts["Latest message"].split(",")[0], "May 1")

    def test_every_participant_is_named_with_the_address(self):
        people = [(item.one("bdi", "person-name").text, item.one("span", "person-facts").text)
                  for item in self.page.root.one("ul", "people").all("li")]
        self.assertEqual(people, [("Mia Okafor", "+15550142 · 11 messages"),
                                  ("Jonas <i>Lindqvist</i>", "jonas@example.org · 7 messages"), ("+15550199", "0 messages")])

    def test_every_warning_is_told(self):
        told = [item.texts("p") for item in self.page.root.one("ul", "warnings").all("li")]
        self.assertEqual(told, [
            ["An attachment was missing and could not be included.", "Attachment IMG_0007.MOV was missing."],
            ["A message payload could not be fully decoded."],
            ["A reaction could not be matched to its message."],
            ["An attachment could not be read and was skipped.", "Attachment IMG_0008.jpg was unreadable."],
            ["A word of <tomorrow>."]])

    def test_no_script_ran_from_the_words_and_nothing_came_from_outside(self):
        self.assertEqual(self.result, {"hacked": "undefined", "outside": []})
        self.assertEqual([script.attributes.get("src") for script in self.page.root.all("script")],
                         ["data/messages.js", "assets/app.js"])

    def test_nothing_reaches_the_console(self):
        self.assertEqual(self.page.console, [])


class InGerman(PageTest):
    album = "German"

    def test_dates_are_german_and_words_fall_back_to_english(self):
        self.assertEqual(self.page.html.attributes["lang"], "de")
        self.assertEqual(self.page.root.texts("h2", "day"), ["Donnerstag, 30. April 2026"])
        self.assertEqual(self.page.message(9).one("time", "mark-edited").text, "Edited")
        self.assertEqual(self.page.console, [])


class Empty(PageTest):
    album = "empty"

    def test_an_empty_conversation_says_so(self):
        self.assertEqual(self.page.root.one("p", "notice").text, "This conversation has no messages.")
        self.assertEqual(self.page.root.one("h1").text, "Lake weekend")
        self.assertEqual(self.page.console, [])


class WithoutData(PageTest):
    album = "no data"

    def test_a_missing_record_is_told(self):
        notice = self.page.root.one("p", "notice")
        self.assertEqual(notice.attributes["role"], "alert")
        self.assertIn("data/messages.js", notice.text)
        self.assertEqual(self.page.console, [])


class HostileScripts(PageTest):
    album = "hostile scripts"

    def test_the_policy_stops_inline_scripts_and_the_network(self):
        self.assertEqual(self.result["hacked"], "undefined")
        for directive in ("script-src-elem", "script-src-attr", "img-src", "connect-src"):
            self.assertIn(directive, self.result["stopped"])

    def test_the_console_is_really_read(self):
        self.assertTrue(any("A line of the test's own" in line for line in self.page.console))


class LongList(PageTest):
    album = "long"

    @property
    def result(self):
        return self.page.result

    def test_only_rows_near_the_window_stand_in_the_page(self):
        self.assertEqual(self.result["atStart"], list(range(len(self.result["atStart"]))))
        self.assertLess(len(self.result["atStart"]), 100)
        self.assertTrue(self.result["isConsecutive"])

    def test_both_ends_are_reached(self):
        self.assertEqual(self.result["atEnd"]["index"], 2599)
        self.assertLess(abs(self.result["atEnd"]["below"]), 2)
        self.assertEqual(self.result["backAtStart"], 0)

    def test_a_reply_leads_to_a_message_far_away(self):
        self.assertEqual(self.result["found"], {"index": self.result["replyTarget"], "inSight": True, "focused": True})

    def test_the_row_under_the_eye_moves_only_as_the_hand_does(self):
        self.assertLess(self.result["worstMove"], 1.5)
        self.assertLess(self.result["moveWhenOneAboveGrew"], 1.5)

    def test_all_rows_are_printed(self):
        self.assertEqual(self.result["printed"], 2600)
        self.assertLess(len(self.result["afterPrint"]), 100)

    def test_nothing_reaches_the_console(self):
        self.assertEqual(self.page.console, [])


if __name__ == "__main__":
    unittest.main()
