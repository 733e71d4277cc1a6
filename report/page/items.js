const CARDS_AT_FIRST = 20;
const ENDINGS = ['crashed', 'ended', 'hung'];

/** The verdict; a button that shows the item wherever there is more to know. */
function verdictCell(item) {
  if (!item) return make('span', {class: 'quiet'}, make('span', {'aria-hidden': 'true'}, '·'),
                         make('span', {class: 'unseen'}, 'none'));
  if (item.verdict === 'good' && !item.bad && !item.carried && !item.remarks.length) return badge(item.verdict);
  return make('button', {type: 'button', class: `verdict ${look(item.verdict)}`, click: () => show(item),
                         'aria-label': `${visible(item.verdict)}, details of ${visible(item.label)}`}, mark(item.verdict));
}

function show(item, hosts) {
  const dialog = document.getElementById('item');
  const close = make('button', {type: 'button', class: 'plain', click: () => dialog.close()}, 'Close');
  dialog.setAttribute('aria-label', visible(item.label));
  dialog.replaceChildren(card(item, hosts), close);
  dialog.showModal();
  close.focus();
}

function repro(item) {
  if (!item.repro.length) return null;
  const line = commandLine(item.repro);
  return make('div', {class: 'repro'}, make('code', null, line),
              make('button', {type: 'button', class: 'plain', 'aria-label': `Copy the command for ${visible(item.label)}`,
                              click: event => copy(event.currentTarget, line)}, 'Copy'));
}

function fullText(item) {
  if (!item.text || item.text === item.reason) return null;
  return make('details', {class: 'more'}, make('summary', null, ENDINGS.includes(item.verdict) ? 'Last words' : 'Whole text'),
              make('pre', {tabindex: '0', dir: 'auto', 'aria-label': `Text of ${visible(item.label)}`}, visible(item.text)));
}

function names(title, values) {
  return values.length ? fact(title, values.flatMap((name, at) => [at ? ', ' : null, foreign(name)])) : null;
}

/** `hosts`: a text that says on which of several hosts it is so. */
function card(item, hosts) {
  return make('article', {class: 'card'},
    make('div', {class: 'head'}, badge(item.verdict), make('h3', null, foreign(item.label)),
         make('span', {class: 'quiet'}, [item.label === item.name ? '' : visible(item.name), visible(item.kind === 'codec' ? '' : item.group), visible(item.package),
                                         duration(item.seconds)].filter(Boolean).join(' · '))),
    item.title ? make('p', {class: 'quiet'}, foreign(item.title)) : null,
    item.reason ? make('p', null, foreign(clipped(item.reason, 600))) : null,
    hosts ? fact('On', foreign(hosts)) : null,
    item.phase ? fact('While', foreign(item.phase)) : null,
    item.accepted ? make('p', {class: 'quiet'}, 'Accepted: it doesn’t count as bad.') : null,
    item.carried ? make('p', {class: 'quiet'}, `Taken over from an earlier check${item.checked ? `, ${date(item.checked)}` : ''}; not touched this time.`) : null,
    item.remarks.map(remark => fact('Remark', foreign(remark))),
    names('Fails only after', item.company), names('Breaks', item.spoils),
    item.input ? fact('Its input comes from', foreign(item.input), ', which ended its run') : null,
    item.path ? fact('File', foreign(item.path)) : null,
    repro(item), fullText(item));
}

/** The bad items as cards, some at first. Returns the element and the function that applies a filter. */
function badList(items, hostsOf = () => '') {
  const bad = items.filter(item => item.bad).sort(worstFirst);
  const cards = make('ul', {class: 'cards'});
  const fill = filler(cards);
  const all = make('button', {type: 'button', class: 'plain more', click: () => { limit = Infinity; draw(); }});
  let limit = CARDS_AT_FIRST;
  let shown = bad;
  function draw() {
    fill(shown.slice(0, limit), item => item.entry ??= make('li', null, card(item, hostsOf(item))));
    all.hidden = shown.length <= limit;
    all.textContent = `Show all ${shown.length}`;
  }
  const element = bad.length ? section('bad', `Bad items (${bad.length})`, cards, all) : null;
  return {element, filter: matches => { shown = bad.filter(matches); draw(); }};
}

