"""Album folders for the page tests: invented people, ordinary and hostile words, written as the exporter writes them."""

import json
import os
import shutil
import struct
import zlib

MIA = "participant-+15550142"
JONAS = "participant-jonas@example.org"
SILENT = "participant-+15550199"
MARK = "\N{OBJECT REPLACEMENT CHARACTER}"
HOSTILE = "</script><script>window.hacked=1</script><img src=x onerror=window.hacked=2>&lt;b&gt;"
LONG_WORD = "0123456789" * 100_000


def attachment(number, name, availability="available", **fields):
    record = {"id": str(number), "displayName": name, "availability": availability}
    if availability == "available":
        record["archivePath"] = fields.pop("archivePath", "attachments/" + name)
        record["sha256"] = "0" * 64
    return record | fields


def reaction(number, sender, kind, removed=False, minute=0):
    record = {"id": f"reaction-{number}", "kind": kind, "isRemoved": removed, "date": f"2026-05-01T10:{minute:02}:00Z"}
    return record | ({} if sender is None else {"senderID": sender})


def message(number, sender, text=None, date="2026-05-01T09:00:00Z", **fields):
    record = {
        "id": str(number), "guid": f"GUID-{number}", "date": date, "isFromMe": sender == "me", "service": "iMessage",
        "reactions": [], "attachments": [], "payloadState": "decoded",
    }
    if sender is not None:
        record["senderID"] = sender
    if text is not None:
        record["text"] = text
    return record | fields


def conversation(messages, **fields):
    return {
        "schemaVersion": 1, "id": "7", "guid": "chat-7", "title": "Lake weekend", "service": "iMessage",
        "participants": [
            {"id": MIA, "address": "+15550142", "displayName": "Mia Okafor", "isMe": False,
             "avatarMimeType": "image/png", "avatarPath": "assets/avatars/participant--15550142.png"},
            {"id": JONAS, "address": "jonas@example.org", "displayName": "Jonas <i>Lindqvist</i>", "isMe": False,
             "avatarMimeType": "image/jpeg", "avatarPath": "assets/avatars/broken.jpg"},
            {"id": SILENT, "address": "+15550199", "isMe": False},
        ],
        "sourceMessageCount": len(messages) + 5, "messages": messages, "warnings": [],
        "generatedAt": "2026-11-15T19:48:57Z", "sourceSystemVersion": "Version 15.2 (Build 24C101)",
    } | fields


def every_case():
    """One message for each thing that a record can say."""
    return conversation([
        message(1, MIA, "Are we still on for the lake?", "2026-04-30T09:00:00Z"),
        message(3, MIA, "I can borrow the big tent", "2026-04-30T09:01:00Z"),
        message(5, "me", "Yes, and see https://example.org/lake?a=1&b=2.", "2026-05-01T08:00:00Z", reactions=[
            reaction(1, MIA, "loved", minute=1), reaction(2, JONAS, "loved", minute=2), reaction(3, JONAS, "liked", minute=3),
            reaction(4, JONAS, "liked", True, minute=4), reaction(5, None, "unknown", minute=5),
            reaction(6, "me", "constructor", minute=6)]),
        message(7, JONAS, HOSTILE, subject="Subject <b>of</b> it"),
        message(9, "me", "Seven is perfect", replyToGUID="GUID-7", editedAt="2026-05-01T09:30:00Z", service="SMS"),
        message(11, "me", "Taken back", retractedAt="2026-05-01T09:31:00Z"),
        message(13, "me", retractedAt="2026-05-01T09:32:00Z"),
        message(15, MIA, "Home safe", replyToGUID="GUID-GONE"),
        message(17, MIA, MARK, attachments=[attachment(501, "Sunset #1 50%?.png", mimeType="image/png", byteSize=48211)]),
        message(19, MIA, f"Before{MARK}behind", attachments=[
            attachment(502, "IMG_2042.heic", archivePath="attachments/IMG_2042.heic", mimeType="image/heic")]),
        message(21, JONAS, MARK * 3, attachments=[
            attachment(503, "Packing list.pdf", mimeType="application/pdf", byteSize=184320),
            attachment(504, "IMG_0007.MOV", "missing", mimeType="video/quicktime", byteSize=41200331),
            attachment(505, "IMG_0008.jpg", "unreadable")]),
        message(23, JONAS, attachments=[attachment(506, "Voice.amr", mimeType="audio/amr"),
                                        attachment(507, "Hum.wav", mimeType="audio/wav"),
                                        attachment(508, "Escape.txt", archivePath="attachments/../../Escape.txt")]),
        message(25, JONAS, payloadState="unsupported"),
        message(27, JONAS, "Half of", payloadState="partiallyDecoded"),
        message(29, JONAS),
        message(31, JONAS, MARK),
        message(33, None, "Is this the campsite?"),
        message(35, "participant-nobody", "Who am I?"),
        message(37, MIA, "🎉🎉"),
        message(39, MIA, "one\u2028two\u2029three \u202Edesrever\u202C javascript:alert(1)"),
        message(41, MIA, LONG_WORD),
        message(43, MIA, "  two lines\n and blanks  "),
        message(45, MIA, "Far ahead", "10000-01-01T00:00:00Z"),
        message(47, MIA, "No such day", "yesterday"),
        message(49, "me", "Later field", future={"unknown": [1, None]}, subject=""),
    ], title="Lake & <weekend> \"it's\"", warnings=[
        {"id": "w1", "code": "attachment_missing", "summary": "Attachment IMG_0007.MOV was missing.", "sourceID": "504"},
        {"id": "w2", "code": "unsupported_payload", "summary": "A message payload could not be fully decoded.", "sourceID": "25"},
        {"id": "w3", "code": "unresolved_reaction", "summary": "A reaction could not be matched to its message.", "sourceID": "99"},
        {"id": "w4", "code": "attachment_unreadable", "summary": "Attachment IMG_0008.jpg was unreadable.", "sourceID": "505"},
        {"id": "w5", "code": "toString", "summary": "A word of <tomorrow>."},
    ])


def many_messages(count):
    """A conversation too long to stand in the page as a whole; every row has its own height."""
    messages = []
    for index in range(count):
        text = f"Message number {index}. " + "And some more words. " * (index * 7 % 23)
        sender = "me" if index % 3 else MIA
        day, minute = divmod(index, 1440)
        date = f"20{10 + day // 28:02}-03-{1 + day % 28:02}T{minute // 60:02}:{minute % 60:02}:00Z"
        fields = {"replyToGUID": f"GUID-{2 * (index - 1200)}"} if index >= 1200 and index % 5 == 0 else {}
        messages.append(message(2 * index, sender, text, date, **fields))
    return conversation(messages)


def png(width, height):
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    rows = b"".join(b"\0" + bytes((90, 120, 160)) * width for _ in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")


def wav():
    samples = b"\x80" * 8000
    layout = struct.pack("<4sIHHIIHH", b"fmt ", 16, 1, 1, 8000, 8000, 1, 8)
    body = b"WAVE" + layout + struct.pack("<4sI", b"data", len(samples)) + samples
    return struct.pack("<4sI", b"RIFF", len(body)) + body


FILES = {
    "assets/avatars/participant--15550142.png": png(64, 64),
    "assets/avatars/broken.jpg": b"no picture",
    "attachments/Sunset #1 50%?.png": png(640, 480),
    "attachments/IMG_2042.heic": b"\0\0\0\x18ftypheic" + bytes(200),
    "attachments/Packing list.pdf": b"%PDF-1.4\n%%EOF\n",
    "attachments/Voice.amr": b"#!AMR\n" + bytes(64),
    "attachments/Hum.wav": wav(),
}


def escaped_for_html(text):
    for plain, escaped in (("&", "&amp;"), ("<", "&lt;"), (">", "&gt;"), ('"', "&quot;")):
        text = text.replace(plain, escaped)
    return text


def data_script(record):
    text = json.dumps(record, ensure_ascii=False, sort_keys=True, indent=2)
    for character in "&<>\u2028\u2029":
        text = text.replace(character, f"\\u{ord(character):04X}")
    return f"window.QUILLBOOK_DATA = {text};\n"


def write_album(folder, resources, record, language="en", probe="", with_data=True):
    """Writes an album folder; `probe` is a script of the test that runs from the data file."""
    for name, content in FILES.items():
        path = os.path.join(folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)
    with open(os.path.join(resources, "index.html"), encoding="utf-8") as file:
        page = file.read().replace("{{TITLE}}", escaped_for_html(record["title"])).replace("{{LANG}}", language)
    with open(os.path.join(folder, "index.html"), "w", encoding="utf-8") as file:
        file.write(page)
    for name in ("styles.css", "app.js"):
        shutil.copy(os.path.join(resources, name), os.path.join(folder, "assets", name))
    os.makedirs(os.path.join(folder, "data"), exist_ok=True)
    with open(os.path.join(folder, "data", "messages.js"), "w", encoding="utf-8") as file:
        file.write((data_script(record) if with_data else "") + probe)
