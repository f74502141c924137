window.QUILLBOOK_DATA = {
  "generatedAt" : "2026-05-09T06:13:20Z",
  "guid" : "chat-1",
  "id" : "1",
  "messages" : [],
  "participants" : [],
  "schemaVersion" : 1,
  "sourceMessageCount" : 0,
  "sourceSystemVersion" : "A system 1.0",
  "title" : "Untitled Conversation",
  "warnings" : []
};
