#include "tools/sample/SampleDialogues.h"

namespace quillbook::sample::dialogues {

const std::string_view german = R"script(
=speise: Kartoffelsuppe; Apfelkuchen; Flammkuchen; Linsensuppe; Pflaumenkuchen
=tag: Montag; Dienstag; Mittwoch; Donnerstag; Freitag; Samstag; Sonntag

@2023-06-04 09:15
A: Guten Morgen! Bist du schon wach? 🥐
M: Seit fünf. Die Vögel haben beschlossen, dass der Tag beginnt
A: Die Vögel haben recht. Um zehn am Fluss?
M: Ich bringe Brötchen mit {love:A}

@2023-07-16 18:20
A: Die Aussicht von der Hütte. Man hört nur die Kühe {pic:alps} {love:M}
M: Wunderschön! Bleib doch gleich da
A: Habe schon überlegt, ob die Kühe eine Lehrerin brauchen {laugh:M}

@2023-12-24 17:00
A: Frohe Weihnachten! Oma hat drei Bleche Vanillekipferl gebacken und schickt dir eines davon. Sie sagt, du sollst sie nicht alle auf einmal essen, weiß aber genau, dass du es tun wirst, und hat deshalb vorsorglich ein viertes Blech angefangen. 🎄 {love:M}
M: Frohe Weihnachten euch allen! Sag Oma, sie kennt mich zu gut
A: Das weiß sie

@2024-08-30 20:10
M: Danke für deinen Brief. Ich habe ihn zweimal gelesen
A: Dann hat sich die schöne Tinte gelohnt 🙂 {both}

A: Ich habe <speise> gemacht, viel zu viel
M: Bin unterwegs
A: Dachte ich mir

M: Hast du am <tag> Zeit?
A: Ab sechs immer
M: Dann um sechs!

A: Stell dir vor, der Bus war pünktlich
M: Ist alles in Ordnung?
A: Ich saß nicht drin

M: Wie heißt noch mal die Straße mit den Linden?
A: Lindenstraße
M: Natürlich

A: Übst du noch Geige?
M: Die Nachbarn sagen: leider ja
A: Weiter so!

A: Schlaf gut und träum was Schönes 🌙
M: Du auch!

M: Größte Überraschung des Tages: der Schlüssel lag im Kühlschrank
A: Neben der Butter?
M: In der Butter

A: Am <tag> ist Flohmarkt, ich suche eine Lampe
M: Ich suche nichts und werde alles kaufen
A: Wie immer

M: Rezept für <speise>, bitte!
A: Nach Gefühl
M: Mein Gefühl hat keine Mengenangaben

A: Die Kleine hat heute „Straßenbahnhaltestelle“ gesagt
M: Fehlerfrei?
A: Fehlerfrei. Dann hat sie gelacht, bis ihr die Tränen kamen
)script";

const std::string_view spanish = R"script(
=comida: tortilla; gazpacho; croquetas; arroz con leche; lentejas
=dia: lunes; martes; miércoles; jueves; viernes; sábado; domingo

@2023-05-12 12:30
A: ¡Hola! ¿Sigues pensando en venir en agosto? ☀️
M: ¡Claro que sí! Ya tengo el billete
A: Mi madre ya está preparando la lista de todo lo que tienes que comer {laugh:M}
M: Dile que voy con hambre

@2023-08-19 21:40
A: Qué noche, todavía oigo la música {pic:balloons} {love:M}
M: No quería que terminara nunca
A: Pues ya sabes: el año que viene, la misma mesa, la misma plaza, y tú vuelves a bailar aunque digas que no sabes. Te vimos todos, incluida mi abuela, que de esto entiende más que nadie. {emph:M}
M: Tu abuela me pisó dos veces {laugh:A}

@2024-02-28 19:05
A: ¡Me han dado la beca! 🎉
M: ¡¡¡ENHORABUENA!!! Lo sabía, lo sabía
A: Gracias por leer todas las versiones {love:M}

@2024-08-21 10:00
A: Buenos días, ¿has llegado bien?
M: Sí, todo perfecto. Ya echo de menos el pan
A: El pan también te echa de menos a ti ❤️ {both}

A: He hecho <comida>, ¿vienes?
M: En diez minutos estoy ahí
A: Trae pan

M: ¿Quedamos el <dia>?
A: El <dia> perfecto, ¿a las ocho?
M: A las ocho

A: ¿Cómo se dice "madrugada" en inglés?
M: No se dice. Se sufre
A: 😂😂

M: ¿Me pasas la receta de la <comida>?
A: Es secreta. Te la mando ahora

A: Hoy ha llovido por fin, las calles huelen a tierra
M: Mándame un poco
A: Abre la ventana

A: Mi sobrino pregunta cuándo vuelves
M: Dile que pronto, y que sigo practicando el regate
A: Dice que él también, y que te va a ganar

M: ¿Qué tal el examen?
A: Difícil, pero creo que bien
M: Entonces, muy bien

A: Buenas noches, corazón
M: Que descanses 🌙

A: ¿Has visto la luna?
M: La estoy mirando ahora mismo
A: Yo también. Qué pequeña es la distancia, ¿verdad?

M: Feliz cumpleaños a tu padre 🎂
A: ¡Gracias! Dice que este año cumple los mismos que el pasado
)script";

const std::string_view portuguese = R"script(
=prato: feijoada; bolo de cenoura; caldo verde; pão de queijo; moqueca
=dia: segunda; terça; quarta; quinta; sexta; sábado; domingo

@2023-03-10 14:22
A: Oi! Consegui as passagens, chego no dia 18 ✈️
M: Que notícia boa! Vou te buscar na estação
A: Levo café de verdade, viu? {love:M}
M: O meu coração agradece

@2023-03-25 20:18
A: Cheguei bem em casa. Que saudade já {pic:beach} {love:M}
M: Também. A casa ficou silenciosa demais
A: O violão ficou aí de propósito: assim eu tenho que voltar, e você tem que aprender pelo menos aquela música até lá. Não precisa ficar perfeito, só precisa ficar alegre, como a vó dizia. {love:M}
M: Já sei dois acordes. Um deles é alegre {laugh:A}

@2024-06-24 21:30
A: Feliz São João! Tem fogueira e milho por todo lado 🔥🌽
M: Guarda um pedaço pra mim!
A: Comi por nós dois

@2024-08-02 09:45
A: Bom dia! Como foi a mudança?
M: Tudo no lugar, menos as chaves
A: Procura na geladeira 😂 {both}

A: Fiz <prato> hoje
M: Isso é maldade
A: Pensei em você a cada garfada

M: Podemos falar na <dia>?
A: Podemos sim, depois das sete
M: Combinado!

A: Como vai a aula de violão?
M: O vizinho se mudou
A: Por causa disso?
M: Ele diz que não

A: Está chovendo tanto que o gato não sai da janela
M: Um gato sábio
A: Um gato preguiçoso

M: Me ensina a fazer <prato>?
A: Liga a câmera no <dia>, a gente faz junto

A: Boa noite, dorme bem
M: Você também, um abraço

A: Achei uma foto nossa da praia, 2015!
M: Com aquele chapéu?
A: Com aquele chapéu
M: Meu Deus

M: Parabéns!!! 🎈🎈
A: Obrigado, meu amigo! Senti falta do seu abraço hoje
)script";

const std::string_view ukrainian = R"script(
=страва: борщ; вареники; деруни; сирники; голубці
=день: понеділок; вівторок; середу; четвер; п’ятницю; суботу; неділю

@2023-04-16 10:05
A: Христос воскрес! Паска вдалася цього року 🌼
M: Воістину воскрес! Пахне аж сюди
A: Бабуся питає, чи ти ще пам’ятаєш, як фарбувати яйця цибулинням
M: Пам’ятаю! Руки були коричневі цілий тиждень {laugh:A}

@2023-09-09 18:47
A: Дивись, які соняшники в саду {pic:sunflowers} {love:M}
M: Яка краса!
A: Дід казав: соняшник завжди знає, куди дивитися, а людині треба інколи нагадати. Тому я надсилаю тобі цю світлину щоосені, щоб ти не забував, де твоє сонце. {love:M}
M: Дякую тобі. Справді ❤️

@2024-01-06 20:30
A: Святвечір сьогодні тихий, але ми всі разом за столом
M: Це найголовніше. Обіймаю вас усіх
A: І ми тебе 🕯️ {love:M}

@2024-08-24 09:00
A: Доброго ранку! Сьогодні свято 💙💛
M: Зі святом! Співаєте?
A: Уся вулиця {both}

A: Зварила <страва>, шкода, що ти далеко
M: Надішли хоч запах!
A: Відкрий вікно

M: Можемо поговорити у <день>?
A: Так, увечері
M: Домовилися

A: Котик знову спить на клавіатурі
M: То це він писав учора?
A: Учора писав він, так

A: Як твоя українська?
M: Повільно, але з любов’ю
A: Так і треба

M: На добраніч!
A: Солодких снів 🌙

A: Яблука цього року маленькі, але солодкі
M: Як завжди у вас
A: Залишу тобі банку варення

M: Який рецепт <страва>?
A: Треба довго розповідати. Краще приїжджай у <день>

A: Маля зробило перший крок!
M: Ура!!! Куди?
A: До кота. Кіт пішов
)script";

} // namespace quillbook::sample::dialogues
