CREATE TABLE chat (ROWID INTEGER PRIMARY KEY, guid TEXT, display_name TEXT, chat_identifier TEXT, service_name TEXT);
CREATE TABLE handle (ROWID INTEGER PRIMARY KEY, id TEXT);
CREATE TABLE chat_handle_join (chat_id INTEGER, handle_id INTEGER);
CREATE TABLE chat_message_join (chat_id INTEGER, message_id INTEGER);
CREATE TABLE message (ROWID INTEGER PRIMARY KEY, guid TEXT, text TEXT, attributedBody BLOB, handle_id INTEGER, date INTEGER, is_from_me INTEGER, service TEXT, subject TEXT, associated_message_guid TEXT, associated_message_type INTEGER, thread_originator_guid TEXT, date_edited INTEGER, date_retracted INTEGER);
CREATE TABLE message_attachment_join (message_id INTEGER, attachment_id INTEGER);
CREATE TABLE attachment (ROWID INTEGER PRIMARY KEY, guid TEXT, filename TEXT, transfer_name TEXT, total_bytes INTEGER, mime_type TEXT, uti TEXT);

INSERT INTO chat VALUES (1, 'iMessage;+;chat1001', 'Garden & <Kitchen>: "plans"', 'chat1001', 'iMessage');
INSERT INTO handle VALUES (1, '+15550142'), (2, 'noor@example.org'), (3, '+15550177');
INSERT INTO chat_handle_join VALUES (1, 1), (1, 2);

INSERT INTO message VALUES
  (10, 'G-10', 'Who brings the tomatoes? =1+1', NULL, 1, 725000000123000000, 0, 'iMessage', 'Sunday', NULL, 0, NULL, NULL, NULL),
  (11, 'G-11', '=SUM(A1) is how I count them, "honestly", *really*', NULL, 0, 725000060000000000, 1, 'iMessage', NULL, NULL, 0, 'G-10', 725000120000000000, NULL),
  (12, 'G-12', NULL, X'040B73747265616D747970656481E803840140848484124E5341747472696275746564537472696E67008484084E534F626A656374008592848484084E53537472696E67019484012B0B4461732069737420677574868402694901068484840C4E5344696374696F6E617279009484016901928496961D5F5F6B494D4D657373616765506172744174747269627574654E616D658692848484084E534E756D626572008484074E5356616C7565009484012A84999900868686', 2, 725086400000000000, 0, 'SMS', NULL, NULL, 0, NULL, NULL, NULL),
  (13, 'G-13', NULL, X'FF00FE01', 1, 725086500000000000, 0, 'iMessage', NULL, NULL, 0, NULL, NULL, NULL),
  (14, 'G-14', '</script><b>ünïcode</b> & more ' || char(8232) || ' line', NULL, 3, 725086600000000000, 0, 'iMessage', NULL, NULL, 0, 'G-gone', NULL, NULL),
  (15, 'G-15', char(65532), NULL, 2, 725086700000000000, 0, 'iMessage', NULL, NULL, 0, NULL, NULL, NULL),
  (16, 'G-16', NULL, NULL, 1, 725086800000000000, 0, 'iMessage', NULL, NULL, 0, NULL, NULL, 725086900000000000),
  (20, 'R-20', 'Loved “Who brings”', NULL, 2, 725000100000000000, 0, 'iMessage', NULL, 'p:0/G-10', 2000, NULL, NULL, NULL),
  (21, 'R-21', 'Laughed', NULL, 0, 725000110000000000, 1, 'iMessage', NULL, 'bp:G-10', 2003, NULL, NULL, NULL),
  (22, 'R-22', 'Removed', NULL, 2, 725000200000000000, 0, 'iMessage', NULL, 'p:0/G-10', 3000, NULL, NULL, NULL),
  (23, 'R-23', 'Nothing named', NULL, 2, 725000300000000000, 0, 'iMessage', NULL, NULL, 2001, NULL, NULL, NULL);
INSERT INTO chat_message_join SELECT 1, ROWID FROM message;

INSERT INTO attachment VALUES
  (1, 'A-1', '~/Library/Messages/Attachments/aa/00/list.txt', 'a_b [1].txt', 17, 'text/plain', 'public.plain-text'),
  (2, 'A-2', '~/Library/Messages/Attachments/aa/00/list.txt', '../../A_B [1].TXT', 17, 'text/plain', 'public.plain-text'),
  (3, 'A-3', '~/Library/Messages/Attachments/aa/01/gone.jpg', 'gone.jpg', 99, 'image/jpeg', 'public.jpeg'),
  (4, 'A-4', '~/Library/Messages/../../../etc/passwd', 'passwd', 99, NULL, NULL),
  (5, NULL, NULL, NULL, NULL, NULL, NULL);
INSERT INTO message_attachment_join VALUES (15, 1), (15, 2), (15, 3), (15, 4), (15, 5);
