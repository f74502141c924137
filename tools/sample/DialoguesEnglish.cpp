#include "tools/sample/SampleDialogues.h"

namespace quillbook::sample::dialogues {

const std::string_view birthdaySurprise = R"script(
@2023-10-08 11:20
A: Right, new group WITHOUT Dad. He turns 70 on December 2nd. {emph:M}
B: Finally. I thought nobody would start this
M: I'm in. Surprise party or no surprise party?
A: Surprise. He'll pretend to hate it {laugh:B,M}

@2023-10-15 18:42
B: Venue idea: the old boathouse, they have heating now
M: Since when
B: Since somebody complained for ten years. It was me
A: Can you ask for a price? {like:B}

@2023-10-29 20:01
B: They'd do it for the whole evening, tables included, if we clear up ourselves. I said yes before they could change their mind. We get the key on Friday, there's a piano that nobody has tuned since the nineties, and the caretaker's dog comes with the room. {love:A,M}
A: Amazing, thank you!!
M: Dad will like the dog best

@2023-11-05 09:33
A: Cake committee, sketch number one {pic:cakeTwo}
M: 70 candles on that?
A: Seven. The fire brigade was clear about it. {laugh:M,B}

@2023-11-12 17:50
M: garbled {garbage}
B: Your message came through empty?
M: No idea what happened, I only wrote: I'll do the slides {none}
M: I'll do the slides {mutable}

@2023-11-19 13:15
C: Robin asked me to write the guest list here: the choir (9), the neighbours on both sides, Uncle Pete if the knee allows, and the two gentlemen from the allotment. That makes 24, or 23 without the knee.
A: Thanks Ines, perfect {reply:1}
B: I'll make it 25, the dog eats too {laugh:A}

@2023-11-26 21:12
A: He asked me today what we're doing for his birthday
M: WHAT DID YOU SAY
A: "Nothing special" and then I dropped a plate {laugh:B,C,M}

@2023-12-02 23:05
B: HIS FACE {love:A,C,M}
C: He danced with everyone. Even with the dog.
A: Pictures please, all of you! {pic:skyline}
M: He just told me he knew since October {reply:2}
A: HOW
M: You dropped two plates {laugh:B,C}

@2023-12-03 10:10
A: Thank you, you wonderful people. {love:B,C,M} {orphan:B}
)script";

const std::string_view bookClub = R"script(
@2022-09-14 19:30
A: {rename:Thursday Book Club}
A: New season, new books! We start with the lighthouse one 📚 {like:M,B}
B: Is it long
A: It's long. It's worth it. {subject:Thursday at seven}
M: I've got it from the library already, feeling smug

@2022-09-29 22:14
D: I finished it on the train and missed my stop twice {laugh:A,M}
A: That's the review we print on the back cover
D: And I have opinions about chapter nine!!!
M: Save them for Thursday 🤐

@2022-10-13 21:58
B: What a discussion. I still don't understand the uncle
D: Nobody understands the uncle. That IS the uncle. {laugh:A,B} {love:M}
A: Notes from tonight, for everyone who had to leave early {pic:notesText}
M: this is better than the book {reply:1}

@2022-11-03 18:05
A: Next up: your suggestions please, two each
D: Something short and something with a garden
B: Something where nobody dies
A: That's two different books, Bela
M: I'd read about the garden

@2022-12-08 20:20
D: Dear all, I've taken the job up north and will move in January. I'll miss our Thursdays more than I can say here. Please keep the chair by the radiator free, somebody will come who needs it as much as I did. {love:A,B,M}
A: Oh Selma. Once a member, always a member. ❤️
B: The chair keeps your name on it.
M: Send us your opinions by post. All of them. {reply:3}

@2023-01-05 19:00
D: {left}
A: And now it's very quiet in here
B: I already miss being told I'm wrong {love:A}

@2023-01-19 21:30
A: Postcard from Selma: "The uncle makes sense up here. It's the wind." {laugh:B,M} {pic:winter}
A: And the back of it {pic:noPath}
M: I KNEW it
B: she'll be back for the spring reading, she promised {question:M} {unquestion:M}

@2023-03-02 20:47
M: It's the radiator's birthday, ten years of cold Thursdays {subject:Re: chair}
A: Cake at my place then {empty}
B: that last message is blank on my phone?
A: It was just a heart, never mind ❤️

@2023-03-16 19:12
A: The garden book wins, 3 to 1 {like:B}
M: 🌱🌱🌱 {both}
)script";

const std::string_view mother = R"script(
@2014-03-08 09:12
A: Hello darling, it is your mother. I have a telephone with a screen now
M: MUM. Welcome to the future!
A: How do I make the letters larger
M: Settings. I'll show you on Sunday ❤️

@2014-05-18 16:40
A: The beans are in. Your father made a fence for the hare
M: For or against the hare?
A: That depends on who you ask

@2015-12-24 08:30
A: Merry Christmas my love. Drive carefully, there is ice on the bridge
M: Merry Christmas Mum, leaving at ten!
A: The soup is on

@2016-10-02 19:55
M: I got the job!!!
A: I am dancing in the kitchen. I am really dancing. Your father says congratulations, and that I should mind the cat.

@2018-06-10 11:11
M: Look who moved in {pic:cat} {love:A}
A: What a face! What is she called?
M: Pudding
A: Of course she is {laugh:M}

@2019-04-21 14:25
A: I found the recipe you asked for. You take five hundred grams of flour, a good piece of butter (do not be shy), two eggs from Mrs Alder, and as much milk as the bowl says. The bowl will tell you. Bake it until the whole house smells of it and then five minutes longer. {love:M}
M: "The bowl will tell you." Mum, I love you
A: It always told my mother.

@2020-03-29 17:02
A: How are you, all alone up there?
M: I talk to Pudding. She's a good listener
A: Put the phone on the table and let us have supper together {love:M} {archive}
M: 7 o'clock, I'll bring the soup

@2021-02-14 10:48
M: Happy Valentine's to my favourite mum 💌
A: You only have the one
M: Still favourite {reply:1} {laugh:A}

@2022-08-19 15:33
M: This is the view from the new flat {pic:window}
A: Oh, you can see the church! I was a bridesmaid there in a dreadful dress
M: I need to see that dress
A: No. {emph:M}

@2023-05-06 12:00
A: This came out of the attic, do you remember it {pic:bicycle}
M: MY BIKE. The bell still works?
A: Your father rings it every time he passes. {laugh:M} {edit:Your father rings it every day.}

@2024-01-01 00:04
M: Happy New Year Mum!!! 🎆 {style:fireworks}
A: Happy New Year my heart. May it be kind to you. {love:M}
M: And to you ❤️

@2024-09-22 18:15
A: The little tree you planted has its first apples. Four of them. We are leaving one for you. {pic:apples} {love:M}
M: I'm coming on Saturday. Don't let Dad eat it {both}
A: He has already been told. {both}
)script";

const std::string_view grandfather = R"script(
@2013-06-02 10:05
A: TESTING TESTING GRANDPA HERE
M: It works! You can turn off the capital letters :)
A: I LIKE THEM

@2013-08-11 14:30
A: CAUGHT A PIKE. THIS LONG. YOU CANNOT SEE MY HANDS
M: I believe you! How heavy?
A: HEAVIER EVERY TIME I TELL IT

@2013-11-28 17:20
M: How's the knee, Grandpa?
A: OLDER THAN THE REST OF ME

@2014-04-05 08:15
A: TODAY IS THE FIRST DAY FOR SHORT SLEEVES
M: It's 9 degrees
A: EXACTLY

@2014-09-19 19:40
A: YOUR GRANDMOTHER SAYS I SHOULD ASK ABOUT YOUR STUDIES
M: Tell her they're going fine! And tell her yourself hello
A: SHE SITS NEXT TO ME AND SAYS HELLO YOURSELF

@2015-07-26 21:10
M: Thank you for the day on the lake. I'll never forget it
A: YOU ROW WELL. A BIT CROOKED. LIKE YOUR FATHER
M: Highest praise :)

@2016-02-27 16:00
A: I HAVE READ ALL YOUR MESSAGES AGAIN TODAY FROM THE BEGINNING. THAT IS A GOOD THING ABOUT THIS MACHINE. THEY STAY. I DID NOT EXPECT IT TO BE SO NICE TO HAVE THEM
M: I keep yours too, Grandpa. Every single one.
A: GOOD

@2016-05-15 09:00
M: Happy birthday Grandpa!!! 84!
A: THANK YOU. THE CAKE WAS CROOKED AND VERY GOOD
)script";

const std::string_view parcelService = R"script(
@2024-04-02 07:58
A: Parcel Post: your parcel will be delivered today between 9:10 and 11:10. Reply STOP to end these notices.

@2024-05-23 08:12
A: Parcel Post: we missed you. Your parcel waits at the shop on 12 Mill Lane until June 1.

@2024-07-30 08:01
A: Parcel Post: your parcel (1 photo book, 2.1 kg) has left our depot.

@2024-08-11 10:31
A: Parcel Post: delivered to your neighbour at number 14.
M: STOP
A: Parcel Post: you will receive no further notices. {both}

=weight: 0.4; 1.2; 2.1; 3.7; 5.0

A: Parcel Post: your parcel (<weight> kg) has left our depot.

A: Parcel Post: your parcel (<weight> kg) will be delivered tomorrow.
)script";

const std::string_view noteToSelf = R"script(
@2023-02-04 22:41
M: Idea for the photo book: begin with the jetty, end with the jetty {both}
M: 52.4 m² × 0.35 – ask about the paint {textonly}

=thing: stamps; a light bulb; the good tea; string; blue paint; batteries

M: Buy <thing>

M: Don't forget: <thing>
)script";

} // namespace quillbook::sample::dialogues
