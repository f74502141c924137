window.QUILLBOOK_DATA = {
  "generatedAt" : "2026-05-09T06:13:20Z",
  "guid" : "iMessage;+;chat1001",
  "id" : "1",
  "messages" : [
    {
      "attachments" : [],
      "date" : "2023-12-23T04:53:20Z",
      "guid" : "G-10",
      "id" : "10",
      "isFromMe" : false,
      "payloadState" : "decoded",
      "reactions" : [
        {
          "date" : "2023-12-23T04:55:00Z",
          "id" : "reaction-20",
          "isRemoved" : false,
          "kind" : "loved",
          "senderID" : "participant-noor@example.org"
        },
        {
          "date" : "2023-12-23T04:55:10Z",
          "id" : "reaction-21",
          "isRemoved" : false,
          "kind" : "laughed",
          "senderID" : "me"
        },
        {
          "date" : "2023-12-23T04:56:40Z",
          "id" : "reaction-22",
          "isRemoved" : true,
          "kind" : "loved",
          "senderID" : "participant-noor@example.org"
        }
      ],
      "senderID" : "participant-+15550142",
      "service" : "iMessage",
      "subject" : "Sunday",
      "text" : "Who brings the tomatoes? =1+1"
    },
    {
      "attachments" : [],
      "date" : "2023-12-23T04:54:20Z",
      "editedAt" : "2023-12-23T04:55:20Z",
      "guid" : "G-11",
      "id" : "11",
      "isFromMe" : true,
      "payloadState" : "decoded",
      "reactions" : [],
      "replyToGUID" : "G-10",
      "senderID" : "me",
      "service" : "iMessage",
      "text" : "=SUM(A1) is how I count them, \"honestly\", *really*"
    },
    {
      "attachments" : [],
      "date" : "2023-12-24T04:53:20Z",
      "guid" : "G-12",
      "id" : "12",
      "isFromMe" : false,
      "payloadState" : "decoded",
      "reactions" : [],
      "senderID" : "participant-noor@example.org",
      "service" : "SMS",
      "text" : "Das ist gut"
    },
    {
      "attachments" : [],
      "date" : "2023-12-24T04:55:00Z",
      "guid" : "G-13",
      "id" : "13",
      "isFromMe" : false,
      "payloadState" : "unsupported",
      "reactions" : [],
      "senderID" : "participant-+15550142",
      "service" : "iMessage"
    },
    {
      "attachments" : [],
      "date" : "2023-12-24T04:56:40Z",
      "guid" : "G-14",
      "id" : "14",
      "isFromMe" : false,
      "payloadState" : "decoded",
      "reactions" : [],
      "replyToGUID" : "G-gone",
      "senderID" : "participant-+15550177",
      "service" : "iMessage",
      "text" : "\u003C/script\u003E\u003Cb\u003Eünïcode\u003C/b\u003E \u0026 more \u2028 line"
    },
    {
      "attachments" : [
        {
          "archivePath" : "attachments/a_b [1].txt",
          "availability" : "available",
          "byteSize" : 17,
          "displayName" : "a_b [1].txt",
          "guid" : "A-1",
          "id" : "1",
          "mimeType" : "text/plain",
          "originalFilename" : "~/Library/Messages/Attachments/aa/00/list.txt",
          "sha256" : "83f29e6ea1e5da1c7233a345f259f5e526185bad424bd57c051e8496100f929e",
          "uniformType" : "public.plain-text"
        },
        {
          "archivePath" : "attachments/A_B [1]-2.TXT",
          "availability" : "available",
          "byteSize" : 17,
          "displayName" : "../../A_B [1].TXT",
          "guid" : "A-2",
          "id" : "2",
          "mimeType" : "text/plain",
          "originalFilename" : "~/Library/Messages/Attachments/aa/00/list.txt",
          "sha256" : "83f29e6ea1e5da1c7233a345f259f5e526185bad424bd57c051e8496100f929e",
          "uniformType" : "public.plain-text"
        },
        {
          "availability" : "missing",
          "byteSize" : 99,
          "displayName" : "gone.jpg",
          "guid" : "A-3",
          "id" : "3",
          "mimeType" : "image/jpeg",
          "originalFilename" : "~/Library/Messages/Attachments/aa/01/gone.jpg",
          "uniformType" : "public.jpeg"
        },
        {
          "availability" : "missing",
          "byteSize" : 99,
          "displayName" : "passwd",
          "guid" : "A-4",
          "id" : "4",
          "originalFilename" : "~/Library/Messages/../../../etc/passwd"
        },
        {
          "availability" : "missing",
          "displayName" : "Attachment",
          "id" : "5"
        }
      ],
      "date" : "2023-12-24T04:58:20Z",
      "guid" : "G-15",
      "id" : "15",
      "isFromMe" : false,
      "payloadState" : "decoded",
      "reactions" : [],
      "senderID" : "participant-noor@example.org",
      "service" : "iMessage",
      "text" : "￼"
    },
    {
      "attachments" : [],
      "date" : "2023-12-24T05:00:00Z",
      "guid" : "G-16",
      "id" : "16",
      "isFromMe" : false,
      "payloadState" : "decoded",
      "reactions" : [],
      "retractedAt" : "2023-12-24T05:01:40Z",
      "senderID" : "participant-+15550142",
      "service" : "iMessage"
    }
  ],
  "participants" : [
    {
      "address" : "+15550142",
      "avatarMimeType" : "image/gif",
      "avatarPath" : "assets/avatars/participant--15550142.gif",
      "displayName" : "Ada Merriweather",
      "id" : "participant-+15550142",
      "isMe" : false
    },
    {
      "address" : "noor@example.org",
      "displayName" : "Noor_Haddad*",
      "id" : "participant-noor@example.org",
      "isMe" : false
    },
    {
      "address" : "+15550177",
      "id" : "participant-+15550177",
      "isMe" : false
    }
  ],
  "schemaVersion" : 1,
  "service" : "iMessage",
  "sourceMessageCount" : 11,
  "sourceSystemVersion" : "A system 1.0",
  "title" : "Garden \u0026 \u003CKitchen\u003E: \"plans\"",
  "warnings" : [
    {
      "code" : "unresolved_reaction",
      "id" : "unresolved_reaction-23",
      "sourceID" : "23",
      "summary" : "A reaction could not be matched to its message."
    },
    {
      "code" : "unsupported_payload",
      "id" : "unsupported_payload-13",
      "sourceID" : "13",
      "summary" : "A message payload could not be fully decoded."
    },
    {
      "code" : "attachment_missing",
      "id" : "attachment-missing-3",
      "sourceID" : "3",
      "summary" : "Attachment gone.jpg was missing."
    },
    {
      "code" : "attachment_missing",
      "id" : "attachment-missing-4",
      "sourceID" : "4",
      "summary" : "Attachment passwd was missing."
    },
    {
      "code" : "attachment_missing",
      "id" : "attachment-missing-5",
      "sourceID" : "5",
      "summary" : "Attachment Attachment was missing."
    }
  ]
};
