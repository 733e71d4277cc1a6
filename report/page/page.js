// Around the tables.

const HOSTS_WITH_FACTS = 20;

const verdictsOf = items => [...new Set(items.map(item => item.verdict))].sort((a, b) => gravity(a) - gravity(b));

/** Counts by verdict, which are buttons of the filter and the legend at once. */
function totals(items, choose) {
  const kinds = ['plugin', 'exercise', 'codec'];
  const counts = new Map(verdictsOf(items).map(verdict => [verdict, items.filter(item => item.verdict === verdict)]));
  const parts = some => kinds.map(kind => [kind, some.filter(item => item.kind === kind).length]).filter(([, count]) => count)
    .map(([kind, count]) => plural(count, kind)).join(', ');
  const means = verdict => (LEGEND.find(entry => entry.verdict === verdict) || {means: ''}).means;
  return make('ul', {class: 'totals', 'aria-label': 'Totals'}, [...counts].map(([verdict, some]) => make('li', null,
    make('button', {type: 'button', 'aria-pressed': 'false', value: verdict, click: () => choose(verdict)},
         make('strong', null, String(some.length)), badge(verdict),
         make('span', {class: 'quiet'}, parts(some)), make('span', {class: 'means'}, means(verdict))))));
}

/** The controls, which show and hide rows of `view` and cards of the bad items. */
function filterBar(view) {
  const search = make('input', {type: 'search', autocomplete: 'off', spellcheck: 'false', input: apply});
  const verdict = make('select', {change: apply});
  const differences = make('input', {type: 'checkbox', change: apply});
  const count = make('output', {role: 'status', class: 'quiet'});
  const total = totals(view.items, chosen => { verdict.value = verdict.value === chosen ? '' : chosen; apply(); });
  verdict.append(make('option', {value: ''}, 'all'), ...verdictsOf(view.items).map(name => make('option', {value: name}, visible(name))));

  function apply() {
    const words = search.value.toLowerCase().split(/\s+/).filter(Boolean);
    const matches = item => (!verdict.value || item.verdict === verdict.value) && words.every(word => item.hay.includes(word));
    const allowed = row => (!differences.checked || row.differs) && row.items.some(matches);
    const found = row => (allowed(row) ? (view.several ? 1 : row.items.filter(matches).length) : 0) +
      list(row.children).reduce((sum, child) => sum + found(child), 0);
    for (const table of view.tables) table.show(allowed);
    view.showItems(matches);
    for (const button of total.querySelectorAll('button')) button.setAttribute('aria-pressed', button.value === verdict.value);
    const shown = view.tables.flatMap(table => table.rows).reduce((sum, row) => sum + found(row), 0);
    count.textContent = `${shown} of ${plural(view.total, 'item')}`;
  }
  apply();
  return [view.several ? null : total, make('div', {class: 'filter', role: 'search'},
    make('label', {class: 'search'}, 'Filter', search), make('label', null, 'Verdict', verdict),
    view.several ? make('label', null, differences, 'only differences') : null, count)];
}

function facts(value) {
  return make('dl', null, Object.entries(value).flatMap(([name, entry]) => [make('dt', null, visible(name.replaceAll('_', ' '))), make('dd', null, factValue(entry))]));
}

function factValue(value) {
  if (Array.isArray(value)) return value.length ? make('ul', null, value.map(entry => make('li', null, factValue(entry)))) : '–';
  if (value && typeof value === 'object') return Object.keys(value).length ? facts(value) : '–';
  return value === '' || value === null || value === undefined ? '–' : foreign(value);
}

/** Folded; its content is made when it is opened, since a long check has thousands of runs. */
function fold(title, content) {
  const element = make('details', {class: 'fold'}, make('summary', null, title));
  element.addEventListener('toggle', () => element.append(content()), {once: true});
  return element;
}

function runEnd(end) {
  const {status, signal, deadline} = record(end);
  if (signal !== undefined) return visible(signal);
  if (deadline !== undefined) return `no end within ${visible(deadline)} s`;
  return status === undefined ? '' : `status ${visible(status)}`;
}

function runTable() {
  const table = dataTable('Runs in the order of start', [
    {title: 'Run', width: 5, cell: row => String(row.number), key: row => row.number},
    {title: 'End', width: 11, cell: row => runEnd(row.run.end), key: row => runEnd(row.run.end)},
    {title: 'Time', width: 6.5, style: 'number', cell: row => duration(number(row.run.seconds)), key: row => number(row.run.seconds)},
    {title: 'Arguments', width: 30, cell: row => make('code', null, clipped(row.line, 400)), key: row => row.line},
  ], list(DATA.runs).map(record).map((run, at) => ({run, number: at + 1, line: commandLine(list(run.arguments).map(string))})));
  table.show(() => true);
  return table.element;
}

function background(host, at, several) {
  const title = several ? ['About ', foreign(host.label)] : 'About this check';
  const notes = fold(`Notes (${host.notes.length})`, () => make('ul', null, host.notes.map(note => make('li', null, foreign(note)))));
  notes.open = host.notes.length > 0 && host.notes.length <= 10;
  const runs = list(DATA.runs).length;
  return make('section', null, make('h2', {id: `about-${at}`}, title),
    host.notes.length ? notes : null,
    fold('Machine and options', () => facts({...host.machine, ...host.surroundings})),
    runs ? fold(`Runs (${runs})`, runTable) : null);
}

function incomplete(host, rows, several) {
  if (host.complete) return null;
  const missed = rows.filter((row, at) => host.at(at)?.verdict === 'not-reached').length;
  return make('p', {class: 'warning'}, make('strong', null, several ? ['Not complete: ', foreign(host.label), '. '] : 'This check isn’t complete. '),
              foreign(host.problem), host.problem ? ' ' : null, missed ? `${plural(missed, 'item')} not reached.` : null);
}

function opening(hosts, rows, view) {
  const [{machine, started, seconds}] = hosts;
  const facts = view.several ? [] : [string(machine.host), string(machine.system), date(started), duration(seconds)];
  document.title = `Assayer report: ${view.result}`;
  const open = hosts.map(host => incomplete(host, rows, view.several)).filter(Boolean);
  return [view.several ? null : make('p', {class: 'quiet'}, foreign(facts.filter(Boolean).join(' · '))), make('p', {class: 'result'}, view.result),
          open.slice(0, HOSTS_WITH_FACTS), open.length > HOSTS_WITH_FACTS ? make('p', {class: 'warning'}, `${open.length - HOSTS_WITH_FACTS} more checks aren’t complete.`) : null];
}

function contents(main) {
  const heads = [...main.querySelectorAll('h2[id]')];
  return heads.length < 2 ? null : make('nav', {'aria-label': 'Sections'}, make('ul', null, heads.map(head =>
    make('li', null, make('a', {href: `#${head.id}`}, head.textContent)))));
}

function draw() {
  const [top, main] = [document.getElementById('top'), document.getElementById('content')];
  const rows = list(DATA.rows).map(toRow);
  const hosts = list(DATA.hosts).map((host, at) => toHost(host, at, rows));
  if (!hosts.length) return main.append(make('p', null, 'There is no report in this page.'));
  const view = hosts.length > 1 ? severalReports(hosts, rows) : oneReport(hosts[0], rows);
  const after = hosts.length > HOSTS_WITH_FACTS ? [] : hosts.map((host, at) => background(host, at, view.several));
  main.append(...[filterBar(view), view.sections, after].flat().filter(Boolean));
  top.append(...[opening(hosts, rows, view), contents(main)].flat(2).filter(Boolean));
}

draw();
